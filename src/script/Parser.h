#pragma once

#include <string_view>

#include "script/Program.h"
#include "script/Scope.h"

namespace hylden::script {

/// Parses one expression; an empty one gives Empty. Names are resolved now: the program holds until a variable is
/// added to the scope or another library object is published. @throws ScriptError
Program ParseExpression(std::string_view source, const Scope& scope);

/// Parses one assignment: `name = expression`, with Let or Set before it; the name becomes a variable of the scope when
/// it is none. An empty statement is an empty program. @throws ScriptError
Program ParseAssignment(std::string_view source, Scope& scope);

}  // namespace hylden::script
