#include "ui/form_captions.h"
