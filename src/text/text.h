// Front door of `text`: the string table, `GetText`, captions, and the composition of messages.
// Promises: no text routine ever fails; a missing text shows as its number.
#pragma once

#include "text/captions.h"
#include "text/m_text.h"
#include "text/message_service.h"
#include "text/string_table.h"
#include "text/text_service.h"
