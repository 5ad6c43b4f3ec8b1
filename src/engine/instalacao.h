// What every front end does to put an engine on a station folder: find the folder and give the
// engine the station's log database as its history and the user's cache of loads.
#pragma once

#include <filesystem>
#include <string>

namespace lumavox {

namespace fs = std::filesystem;

class Motor;

// Station folder: the given one, else LUMAVOX_DIR, else the executable's own folder (where the
// station's programs have always lived).
fs::path ResolverPastaApp(const std::string& opcaoDir);

// Installs the station's log database as the engine's history source, and the user's folder
// of recorded collection loads. `copiaDescartavel`: the folder is a simulation's scratch copy,
// whose log database may stay open between loads.
void InstalarHistorico(Motor& motor, bool copiaDescartavel = false);

}  // namespace lumavox
