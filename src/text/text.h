// Front door of `text`: captions and the composition of messages.
// Promises: no text routine ever fails; a missing text shows as its number.
#pragma once

#include "text/captions.h"
#include "text/message_service.h"
#include "text/text_service.h"
