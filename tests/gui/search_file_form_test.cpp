#include "ui/search_file_form.h"
