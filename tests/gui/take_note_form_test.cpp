#include "ui/take_note_form.h"
