// GTK keeps both the access key and the announcement in the widgets themselves; wxWidgets passes
// neither on.
#include <gtk/gtk.h>
#include <wx/listctrl.h>

#include <string>

#include "ui/label_for.h"

namespace txs {
namespace {

// The widget that takes the keys: a list stands in a scrolled window of its own, and one that
// wxWidgets draws itself is composed of windows, the rows first.
GtkWidget* FocusWidget(wxWindow& window) {
  if (dynamic_cast<wxListCtrl*>(&window) != nullptr && !window.GetChildren().empty()) {
    return FocusWidget(*window.GetChildren().front());
  }
  GtkWidget* widget = window.GetHandle();
  while (GTK_IS_SCROLLED_WINDOW(widget) || GTK_IS_VIEWPORT(widget)) {
    GtkWidget* const child = gtk_bin_get_child(GTK_BIN(widget));
    if (child == nullptr) break;
    widget = child;
  }
  return widget;
}

void Announce(GtkWidget* widget, gpointer name) {
  if (widget == nullptr) return;
  atk_object_set_name(gtk_widget_get_accessible(widget), static_cast<const char*>(name));
  // What takes the keys of a drop-down list is a button deep inside.
  if (GTK_IS_COMBO_BOX(widget) || GTK_IS_BOX(widget)) {
    gtk_container_forall(GTK_CONTAINER(widget), Announce, name);
  }
}

gboolean FocusInside(GtkWidget*, gboolean, gpointer target) {
  static_cast<wxWindow*>(target)->SetFocus();
  return TRUE;
}

}  // namespace

void LabelFor(wxStaticText& label, wxWindow& target) {
  // wxWidgets ties a label to the outer widget of what follows it; a list's scrolled window would
  // keep the focus to itself.
  g_signal_connect(target.GetHandle(), "mnemonic-activate", G_CALLBACK(FocusInside), &target);
  GtkWidget* const label_widget = label.GetHandle();
  if (GTK_IS_LABEL(label_widget)) {
    gtk_label_set_mnemonic_widget(GTK_LABEL(label_widget), target.GetHandle());
  }
  SetAccessibleName(target, label.GetLabelText());
}

void SetAccessibleName(wxWindow& window, const wxString& name) {
  std::string utf8 = name.utf8_string();
  Announce(FocusWidget(window), utf8.data());
}

}  // namespace txs
