// The installers of the Microsoft Data Access Components in the setup kit: the full one, which Scan
// lists, and the minimal one, which takes its place with the option for it.
#pragma once

#include "document/application.h"

namespace txs {

inline constexpr char kFullMdacInstaller[] = "mdac_typ.exe";
inline constexpr char kMinimalMdacInstaller[] = "Mdac_min.exe";

// Their complete extra to-do entries.
inline constexpr char kFullMdacEntry[] =
    "ExecFile(<TempDir>\\mdac_typ.exe|0|/q:a|/c:\"setup.exe /qt\")"
    "@DeleteFile(<TempDir>\\mdac_typ.exe)"
    "@SetVar(Reboot|1)";
inline constexpr char kMinimalMdacEntry[] =
    "ExecFile(<TempDir>\\Mdac_min.exe|0|/S)"
    "@DeleteFile(<TempDir>\\Mdac_min.exe)"
    "@SetVar(Reboot|1)";

// Every row of the full installer becomes one of the minimal installer in the kit, and its entry
// that of the minimal one.
void UseMinimalMdac(Application& application);

// Takes that back when the option was switched off again: rows of the kit's minimal installer that
// go to <TempDir> become such of its full one. Other rows stay as they are.
void UseFullMdac(Application& application);

}  // namespace txs
