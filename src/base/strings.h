// The one text type of the program: UTF-16, on every system.
#pragma once

#include <string>
#include <string_view>

using String = std::u16string;
using StringView = std::u16string_view;
