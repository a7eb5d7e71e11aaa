// A registered project with saved settings that Create can build: three files, one setup kit file.
#pragma once

#include <string>
#include <string_view>

#include "fakes/memory_platform.h"
#include "fakes/noise.h"

namespace txs {

inline std::string DemoSettings() {
  return "[program]\r\n"
         "name=Demo.exe\r\n"
         "group=Demo\r\n"
         "icon=Demo\r\n"
         "[path]\r\n"
         "tavix=C:\\TavixStudio\r\n"
         "project=C:\\Demo\r\n"
         "1=D:\\Rezepte\r\n"
         "[destination]\r\n"
         "size=1\r\n"
         "path=<ProjectDir>\\Setup\r\n"
         "[file]\r\n"
         "01=<ProjectDir>\\Demo.exe,<ProjectDir>,0\r\n"
         "02=<ProjectDir>\\Trend.ocx,<WinSysDir>,1\r\n"
         "03=<ProjectDir>\\leer.txt,<UserDir1>,0\r\n";
}

// Installs the studio and the project "Demo" in C:\Projects\Demo, registered as `directory` says.
inline void InstallDemoProject(MemoryPlatform& world,
                               std::string_view directory = "C:\\Projects\\Demo\\") {
  world.InstallStudio();
  world.files.AddFile("C:\\TavixStudio\\SetupKit\\TXSTPKIT.INI",
                      "[SetupFiles]\r\nCount=1\r\n1=SETUP.EXE\r\n");
  world.files.AddFile("C:\\TavixStudio\\SetupKit\\SETUP.EXE", "engine");
  world.RegisterProject("Demo", directory, "Single");
  world.files.AddFile("C:\\Projects\\Demo\\Demo.swz", DemoSettings());
  world.files.AddFile("C:\\Projects\\Demo\\Demo.exe", std::string(5000, 'x').append("program"));
  world.files.AddFile("C:\\Projects\\Demo\\Trend.ocx", Noise(700, 1));
  world.files.AddFile("C:\\Projects\\Demo\\leer.txt", "");
}

}  // namespace txs
