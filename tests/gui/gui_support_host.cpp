// What only the toolkit itself can tell a test.
#include <gtk/gtk.h>

#include "gui/gui_support.h"

namespace txs {
namespace {

void FindLabelText(GtkWidget* widget, gpointer found) {
  auto& text = *static_cast<std::string*>(found);
  if (!text.empty()) return;
  if (GTK_IS_LABEL(widget) && gtk_widget_get_mapped(widget) != FALSE) {
    text = gtk_label_get_text(GTK_LABEL(widget));
  } else if (GTK_IS_CONTAINER(widget)) {
    gtk_container_foreach(GTK_CONTAINER(widget), FindLabelText, found);
  }
}

}  // namespace

std::string ShownTooltip() {
  std::string text;
  GList* const windows = gtk_window_list_toplevels();
  for (GList* window = windows; window != nullptr; window = window->next) {
    GtkWidget* const widget = GTK_WIDGET(window->data);
    const bool is_tooltip =
        gtk_window_get_type_hint(GTK_WINDOW(widget)) == GDK_WINDOW_TYPE_HINT_TOOLTIP;
    if (is_tooltip && gtk_widget_get_visible(widget) != FALSE) FindLabelText(widget, &text);
  }
  g_list_free(windows);
  return text;
}

std::string NameOfFocus(wxTopLevelWindow& form) {
  GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(form.GetHandle()));
  if (focus == nullptr) return "";
  const char* const name = atk_object_get_name(gtk_widget_get_accessible(focus));
  return name == nullptr ? "" : name;
}

void ForgetPictureOfScreen(void* cairo_context) {
  cairo_surface_mark_dirty(cairo_get_target(static_cast<cairo_t*>(cairo_context)));
}

}  // namespace txs
