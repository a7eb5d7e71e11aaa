#include <glib.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "ui/toolkit_messages.h"

namespace txs {
namespace {

constexpr std::array<std::string_view, 3> kComplaints = {
    "gtk_box_gadget_distribute: assertion 'size >= 0' failed",
    "gtk_distribute_natural_allocation: assertion 'extra_space >= 0' failed",
    "Negative content ",
};

bool IsSizeComplaint(std::string_view message) {
  return std::any_of(kComplaints.begin(), kComplaints.end(), [message](std::string_view complaint) {
    return message.starts_with(complaint);
  });
}

GLogWriterOutput Write(GLogLevelFlags level, const GLogField* fields, gsize count,
                       gpointer user_data) {
  for (const GLogField* field = fields; field != fields + count; ++field) {
    if (std::string_view(field->key) != "MESSAGE") continue;
    // A length below 0 says that the value ends with a zero byte.
    if (field->length < 0 && IsSizeComplaint(static_cast<const char*>(field->value))) {
      return G_LOG_WRITER_HANDLED;
    }
  }
  return g_log_writer_default(level, fields, count, user_data);
}

}  // namespace

void DropSizeComplaints() { g_log_set_writer_func(Write, nullptr, nullptr); }

}  // namespace txs
