// Defects of the engine that are known and being fixed, which the random sequences step around
// so that they can go on past them. Each entry names the condition that meets the defect and says
// what goes wrong. An entry goes when its fix lands, and with it the code that asks for it by name.
// NEVQOS_KNOWN_DEFECTS=reach turns every entry off, to show that the generators still meet them;
// NEVQOS_KNOWN_DEFECTS=reach:NAME,NAME turns off the entries named, to see whether a fix holds.
#pragma once

#include <span>
#include <string_view>

namespace Sim {

struct KnownDefect {
   std::string_view name;
   std::string_view what;
};

std::span< KnownDefect const > knownDefects();
// Whether the generators step around the condition `name`, which must be one of the list.
bool avoided( std::string_view name );

}  // namespace Sim
