#pragma once

#include <memory>
#include <string>

// Parsers that only parse. Each returns its result, null for a broken document.

namespace Orvant::Benchmarks {

std::shared_ptr<void> parseWithXercesDom(const std::string& file);
std::shared_ptr<void> scanWithXercesSax(const std::string& file);
std::shared_ptr<void> parseWithLibxml2(const std::string& file);

} // namespace Orvant::Benchmarks
