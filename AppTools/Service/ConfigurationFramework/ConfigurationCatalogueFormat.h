#pragma once

#include <ConfigurationFramework/ConfigurationItemBase.h>
#include <ConfigurationFramework/ConfigurationValueBase.h>

#include <array>
#include <string_view>
#include <utility>

#include <xercesc/util/XercesDefs.hpp>

namespace Orvant {

// The words of the file of a catalogue, for its writer and its reader. The file's grammar is
// ConfigurationCatalogue.xsd.

/// Text of the grammar.
extern const std::string_view catalogueGrammar;

constexpr const XMLCh* catalogueNamespace = u"urn:orvant:configuration-catalogue";

template <typename E, std::size_t N>
using Words = std::array<std::pair<E, const char*>, N>;

constexpr Words<ConfigurationValueBase::ValueType, 7> typeWords{
    {{ConfigurationValueBase::BoolValue, "bool"},
     {ConfigurationValueBase::IntValue, "int"},
     {ConfigurationValueBase::UnsignedIntValue, "unsigned"},
     {ConfigurationValueBase::DoubleValue, "double"},
     {ConfigurationValueBase::FloatValue, "float"},
     {ConfigurationValueBase::StringValue, "string"},
     {ConfigurationValueBase::StringVectorValue, "list"}}};

constexpr Words<ConfigurationItemBase::Persistence, 4> persistenceWords{
    {{ConfigurationItemBase::LoadAndSave, "LoadAndSave"},
     {ConfigurationItemBase::NotPersistent, "NotPersistent"},
     {ConfigurationItemBase::SaveOnly, "SaveOnly"},
     {ConfigurationItemBase::LoadOnly, "LoadOnly"}}};

constexpr Words<ConfigurationItemBase::GuiVisibility, 2> visibilityWords{
    {{ConfigurationItemBase::Visible, "Visible"}, {ConfigurationItemBase::Hidden, "Hidden"}}};

/// @return the word for an enumerator
template <typename E, std::size_t N>
const char* wordOf(const Words<E, N>& words, E value) {
    for (const auto& [listed, word] : words)
        if (listed == value)
            return word;
    return words.front().second;
}

/// @return the enumerator of a word that the grammar allows
template <typename E, std::size_t N>
E valueOf(const Words<E, N>& words, std::string_view text) {
    for (const auto& [value, word] : words)
        if (text == word)
            return value;
    return words.front().first;
}

} // namespace Orvant
