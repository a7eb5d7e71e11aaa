// What only the toolkit itself can tell a test.
#include <gtk/gtk.h>
#include <wx/image.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "gui/cell_editor.h"
#include "gui/gui_support.h"
#include "gui/picture_file.h"

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

void FindEntry(GtkWidget* widget, gpointer found) {
  if (GTK_IS_ENTRY(widget)) *static_cast<GtkWidget**>(found) = widget;
}

void NotePaint(GdkFrameClock* /*clock*/, gpointer painted) { *static_cast<bool*>(painted) = true; }

void CountChange(GtkClipboard* /*clipboard*/, GdkEvent* /*event*/, gpointer changes) {
  ++*static_cast<unsigned long*>(changes);
}

}  // namespace

bool IsInPlace(wxTopLevelWindow& form) {
  GdkWindow* const window = gtk_widget_get_window(form.GetHandle());
  if (window == nullptr) return false;
  // There, the form's own place is that before.
  if (form.IsMaximized()) return true;
  // Left, right, top, bottom.
  guchar* data = nullptr;
  gint bytes = 0;
  const gboolean has_frame = gdk_property_get(
      window, gdk_atom_intern("_NET_FRAME_EXTENTS", FALSE), gdk_atom_intern("CARDINAL", FALSE), 0,
      4 * sizeof(std::uint32_t), FALSE, nullptr, nullptr, &bytes, &data);
  if (has_frame == FALSE) return false;
  std::array<glong, 4> frame{};
  std::memcpy(frame.data(), data, std::min(sizeof frame, static_cast<std::size_t>(bytes)));
  g_free(data);
  const int scale = gdk_window_get_scale_factor(window);
  const auto pixels = [&](std::size_t side) { return static_cast<int>(frame.at(side)) / scale; };

  wxPoint origin;
  gdk_window_get_origin(window, &origin.x, &origin.y);
  GtkAllocation inner;
  gtk_widget_get_allocation(form.GetHandle(), &inner);
  return form.GetPosition() == origin - wxPoint(pixels(0), pixels(2)) &&
         form.GetSize() ==
             wxSize(inner.width + pixels(0) + pixels(1), inner.height + pixels(2) + pixels(3));
}

void SetEditorText(wxDataViewCtrl& list, const std::string& text) {
  GtkWidget* entry = nullptr;
  gtk_container_foreach(GTK_CONTAINER(list.GtkGetTreeView()), FindEntry, &entry);
  if (entry == nullptr) throw std::runtime_error("no editor is open");
  gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
}

bool WaitForFrame(wxTopLevelWindow& form) {
  constexpr double kPatienceSeconds = 5;
  GdkFrameClock* const clock = gtk_widget_get_frame_clock(form.GetHandle());
  if (clock == nullptr) return false;
  bool painted = false;
  const gulong handler = g_signal_connect(clock, "after-paint", G_CALLBACK(NotePaint), &painted);
  // A layout that is pending comes before the painting of the same frame.
  gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_AFTER_PAINT);
  const bool in_time = WaitFor([&painted] { return painted; }, kPatienceSeconds);
  g_signal_handler_disconnect(clock, handler);
  return in_time;
}

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

unsigned long ClipboardChanges() {
  static unsigned long changes = 0;
  static bool is_counting = false;
  if (!is_counting) {
    is_counting = true;
    g_signal_connect(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), "owner-change",
                     G_CALLBACK(CountChange), &changes);
  }
  return changes;
}

bool FocusIsIn(wxWindow& window) {
  GtkWidget* const form = gtk_widget_get_toplevel(window.GetHandle());
  GtkWidget* const focus = GTK_IS_WINDOW(form) ? gtk_window_get_focus(GTK_WINDOW(form)) : nullptr;
  if (focus == nullptr || gtk_widget_has_focus(focus) == FALSE) return false;
  return focus == window.GetHandle() || gtk_widget_is_ancestor(focus, window.GetHandle()) != FALSE;
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

bool SavePicture(const wxBitmap& picture, const std::string& path) {
  if (!wxImage::FindHandler(wxBITMAP_TYPE_PNG)) wxImage::AddHandler(new wxPNGHandler);
  return picture.SaveFile(wxString::FromUTF8(path + ".png"), wxBITMAP_TYPE_PNG);
}

}  // namespace txs
