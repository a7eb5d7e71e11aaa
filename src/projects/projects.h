// Front door of `projects`: the registry of studio projects, and opening one.
#pragma once

#include "projects/open_project.h"
#include "projects/project_registry.h"
