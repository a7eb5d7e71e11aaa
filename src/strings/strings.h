// Front door of `strings`: every text of the program by its number, in both languages.
// Promises: no routine fails; a missing text shows as its number.
#pragma once

#include "strings/m_text.h"
#include "strings/reason.h"
#include "strings/string_table.h"
