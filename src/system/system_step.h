#pragma once

#include "base/strings.h"
#include "config/section_settings.h"
#include "core/type_table.h"

// The commands, in their order, with the keys of each.
std::vector<TypeEntry> SystemCommands();

// The key that names the command.
inline constexpr KeyTable kSystemKeys({
    {.name = u"Command",
     .kind = KeyKind::Type,
     .meaning = u"what the step does",
     .macros = Macros::Replaced},
});
inline constexpr Key kCommand = kSystemKeys[u"Command"];

// Carries out the command of a System section. Fails with
// "System step contains unsupported command '%s'", or as the command does.
bool RunSystemStep(String& error, const SectionSettings& settings);
