#pragma once

#include <string_view>

namespace Orvant::Tool {

/// The page of page.html: "{{NAME}}" stands for what differs between pages.
extern const std::string_view pageFrame;

} // namespace Orvant::Tool
