// GTK keeps both the access key and the announcement in the widgets themselves; wxWidgets passes
// neither on.
#include <gtk/gtk.h>

#include "ui/label_for.h"

namespace txs {
namespace {

// The widget that takes the keys: a list stands in a scrolled window of its own, which could take
// the focus but passes it on.
GtkWidget* FocusWidget(wxWindow& window) {
  GtkWidget* widget = window.GetHandle();
  while (widget != nullptr && GTK_IS_BIN(widget) &&
         (GTK_IS_SCROLLED_WINDOW(widget) || !gtk_widget_get_can_focus(widget))) {
    GtkWidget* const child = gtk_bin_get_child(GTK_BIN(widget));
    if (child == nullptr) break;
    widget = child;
  }
  return widget;
}

}  // namespace

void LabelFor(wxStaticText& label, wxWindow& target) {
  GtkWidget* const label_widget = label.GetHandle();
  if (GTK_IS_LABEL(label_widget)) {
    gtk_label_set_mnemonic_widget(GTK_LABEL(label_widget), FocusWidget(target));
  }
  SetAccessibleName(target, label.GetLabelText());
}

void SetAccessibleName(wxWindow& window, const wxString& name) {
  GtkWidget* const widget = FocusWidget(window);
  if (widget == nullptr) return;
  AtkObject* const accessible = gtk_widget_get_accessible(widget);
  if (accessible != nullptr) atk_object_set_name(accessible, name.utf8_str());
}

}  // namespace txs
