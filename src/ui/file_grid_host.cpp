#include <gtk/gtk.h>

#include <algorithm>

#include "ui/file_grid_native.h"

namespace txs {
namespace {

// Set on an editor while its context menu is open: the menu takes the focus, the edit goes on.
constexpr char kMenuOpen[] = "txs-menu-open";

GtkTreeViewColumn* ColumnAt(GtkTreeView* view, int x, int y, bool keyboard) {
  GtkTreeViewColumn* column = nullptr;
  if (keyboard) {
    gtk_tree_view_get_cursor(view, nullptr, &column);
  } else {
    gtk_tree_view_get_path_at_pos(view, x, y, nullptr, &column, nullptr, nullptr);
  }
  return column;
}

gboolean OnQueryTooltip(GtkWidget* widget, gint x, gint y, gboolean keyboard, GtkTooltip* tooltip,
                        gpointer /*data*/) {
  GtkTreeView* const view = GTK_TREE_VIEW(widget);
  GtkTreeModel* model = nullptr;
  GtkTreePath* path = nullptr;
  GtkTreeIter row;
  // Turns x and y into coordinates of the rows' window.
  if (gtk_tree_view_get_tooltip_context(view, &x, &y, keyboard, &model, &path, &row) == FALSE) {
    return FALSE;
  }
  gboolean shows = FALSE;
  if (GtkTreeViewColumn* const column = ColumnAt(view, x, y, keyboard != FALSE)) {
    gtk_tree_view_column_cell_set_cell_data(column, model, &row, FALSE, FALSE);
    GList* const cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
    if (cells != nullptr && GTK_IS_CELL_RENDERER_TEXT(cells->data)) {
      GtkCellRenderer* const cell = GTK_CELL_RENDERER(cells->data);
      gint needed = 0;
      gtk_cell_renderer_get_preferred_width(cell, widget, nullptr, &needed);
      GdkRectangle area;
      gtk_tree_view_get_cell_area(view, path, column, &area);
      if (needed > area.width) {
        gchar* text = nullptr;
        g_object_get(cell, "text", &text, nullptr);
        gtk_tooltip_set_text(tooltip, text);
        gtk_tree_view_set_tooltip_cell(view, tooltip, path, column, nullptr);
        g_free(text);
        shows = TRUE;
      }
    }
    g_list_free(cells);
  }
  gtk_tree_path_free(path);
  return shows;
}

void OnMenuHidden(GtkWidget* /*menu*/, gpointer editor) {
  g_object_set_data(G_OBJECT(editor), kMenuOpen, nullptr);
}

void OnMenuOpened(GtkEntry* editor, GtkWidget* menu, gpointer /*data*/) {
  g_object_set_data(G_OBJECT(editor), kMenuOpen, editor);
  g_signal_connect_object(menu, "unmap", G_CALLBACK(OnMenuHidden), editor, GConnectFlags{});
}

void TakeEdit(GtkWidget* editor, gpointer /*data*/) {
  if (!GTK_IS_CELL_EDITABLE(editor)) return;
  // Who listens to the edit may take the editor away.
  g_object_ref(editor);
  gtk_cell_editable_editing_done(GTK_CELL_EDITABLE(editor));
  gtk_cell_editable_remove_widget(GTK_CELL_EDITABLE(editor));
  g_object_unref(editor);
}

// Runs before the toolkit's own handler of the lost focus, which drops the edit.
gboolean OnEditorEvent(GtkWidget* editor, GdkEvent* event, gpointer /*data*/) {
  const bool leaves = event->type == GDK_FOCUS_CHANGE && event->focus_change.in == FALSE;
  if (leaves && g_object_get_data(G_OBJECT(editor), kMenuOpen) == nullptr) {
    TakeEdit(editor, nullptr);
  }
  return FALSE;
}

void OnEditingStarted(GtkCellRenderer* /*renderer*/, GtkCellEditable* editor, gchar* /*path*/,
                      gpointer /*data*/) {
  if (!GTK_IS_ENTRY(editor)) return;
  g_signal_connect(editor, "populate-popup", G_CALLBACK(OnMenuOpened), nullptr);
  g_signal_connect(editor, "event", G_CALLBACK(OnEditorEvent), nullptr);
}

}  // namespace

void ShowCutTextsAsTooltips(wxDataViewCtrl& list) {
  GtkWidget* const view = list.GtkGetTreeView();
  gtk_widget_set_has_tooltip(view, TRUE);
  g_signal_connect(view, "query-tooltip", G_CALLBACK(OnQueryTooltip), nullptr);
}

void TakeEditsWhenLeft(wxDataViewTextRenderer& renderer) {
  g_signal_connect(renderer.GtkGetTextRenderer(), "editing-started", G_CALLBACK(OnEditingStarted),
                   nullptr);
}

void LetTabLeave(wxDataViewCtrl& /*list*/) {}

void TakeOpenEdit(wxDataViewCtrl& list) {
  // The list's only child that can be edited is the editor.
  gtk_container_foreach(GTK_CONTAINER(list.GtkGetTreeView()), TakeEdit, nullptr);
}

void ScrollToRow(wxDataViewCtrl& list, unsigned int row) {
  GtkTreeView* const view = GTK_TREE_VIEW(list.GtkGetTreeView());
  GtkTreePath* const path = gtk_tree_path_new_from_indices(static_cast<gint>(row), -1);
  // Before the rows are laid out, this notes where to scroll to.
  gtk_tree_view_scroll_to_cell(view, path, nullptr, FALSE, 0, 0);
  if (gtk_widget_get_realized(GTK_WIDGET(view)) != FALSE) {
    GdkRectangle area;
    gtk_tree_view_get_background_area(view, path, nullptr, &area);
    gint top = 0;
    gtk_tree_view_convert_bin_window_to_tree_coords(view, 0, area.y, nullptr, &top);
    GtkAdjustment* const scroll = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view));
    const double lowest = top + area.height - gtk_adjustment_get_page_size(scroll);
    const double value = gtk_adjustment_get_value(scroll);
    gtk_adjustment_set_value(scroll, std::min(std::max(value, lowest), static_cast<double>(top)));
  }
  gtk_tree_path_free(path);
}

int GivenWidth(const wxDataViewColumn& column) {
  GtkTreeViewColumn* const native = GTK_TREE_VIEW_COLUMN(column.GetGtkHandle());
  return gtk_tree_view_column_get_fixed_width(native);
}

wxWindow& KeyWindow(wxDataViewCtrl& list) { return list; }

void WithoutSelectionEvents(wxDataViewCtrl& list, const std::function<void()>& change) {
  const wxDataViewCtrl::SelectionEventsSuppressor silence(&list);
  change();
}

}  // namespace txs
