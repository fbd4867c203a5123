#include "SchemaText.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace Orvant::Support {

namespace {

using Token = WrittenDocument::Token;

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view behindName = " \t\r\n/>=";

bool isBlank(std::string_view text) {
    return text.find_first_not_of(blanks) == std::string_view::npos;
}

bool isBlankOrComment(std::string_view text) {
    const std::size_t begin = text.find("<!--");
    const std::size_t end = text.find("-->", begin);
    return isBlank(text.substr(0, begin)) &&
           (begin == std::string_view::npos ||
            (end != std::string_view::npos && isBlank(text.substr(end + 3))));
}

std::map<std::string, std::string> attributesOf(std::string_view tag) {
    std::map<std::string, std::string> attributes;
    std::size_t at = tag.find_first_of(blanks);
    while ((at = tag.find_first_not_of(" \t\r\n/>", at)) != std::string_view::npos) {
        const std::size_t nameEnd = tag.find_first_of(behindName, at);
        const std::size_t quote = tag.find_first_of("\"'", nameEnd);
        const std::size_t end = tag.find(tag[quote], quote + 1);
        attributes.emplace(tag.substr(at, nameEnd - at), tag.substr(quote + 1, end - quote - 1));
        at = end + 1;
    }
    return attributes;
}

bool canBeCut(const WrittenElement& element) {
    static const std::set<std::string> names = {"attribute", "complexType", "element",
                                                "simpleType"};
    return names.contains(element.name);
}

auto lineEndsIn(std::string_view text) {
    return std::count(text.begin(), text.end(), '\n');
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

/// What becomes of the tokens of a schema out of which elements are cut.
class TokenFates {
public:
    enum Fate { Stays, Goes, MayGo };

    TokenFates(const WrittenDocument& document, const std::vector<CutElement>& cut)
        : m_document(document), m_tokens(document.tokens()), m_fates(m_tokens.size(), Stays) {
        for (const CutElement& one : cut)
            decide(*one.element);
    }

    Fate operator[](std::size_t token) const { return m_fates[token]; }

private:
    void decide(const WrittenElement& element) {
        const auto begin =
            std::lower_bound(m_tokens.begin(), m_tokens.end(), element.begin,
                             [](const Token& token, std::size_t at) { return token.begin < at; });
        const auto end = std::find_if(
            begin, m_tokens.end(), [&](const Token& token) { return token.begin >= element.end; });
        const auto first = static_cast<std::size_t>(begin - m_tokens.begin());
        const auto last = static_cast<std::size_t>(end - m_tokens.begin());
        std::fill(m_fates.begin() + (begin - m_tokens.begin()),
                  m_fates.begin() + (end - m_tokens.begin()), Goes);
        decideBefore(first);
        decideBehind(last);
    }

    /// Comments without a blank line between; one that begins behind something may belong to that.
    void decideBefore(std::size_t end) {
        while (true) {
            const std::size_t comment = end - 1 - (isSpace(end - 1) ? 1 : 0);
            if (!isComment(comment) || lineEnds(comment + 1) > 1)
                return;
            set(comment, lineEnds(comment - 1) > 0 ? Goes : MayGo);
            end = comment;
        }
    }

    /// Comments on the last line; one with something behind it may belong to that.
    void decideBehind(std::size_t begin) {
        while (true) {
            const std::size_t comment = begin + (isSpace(begin) ? 1 : 0);
            if (!isComment(comment) || (comment != begin && lineEnds(begin) > 0))
                return;
            set(comment, lineEnds(comment + 1) > 0 ? Goes : MayGo);
            begin = comment + 1;
        }
    }

    void set(std::size_t token, Fate fate) {
        if (m_fates[token] != Goes)
            m_fates[token] = fate;
    }
    bool isSpace(std::size_t token) const { return is(token, Token::Blank); }
    bool isComment(std::size_t token) const { return is(token, Token::Comment); }
    bool is(std::size_t token, Token::Kind kind) const {
        return token < m_tokens.size() && m_tokens[token].kind == kind;
    }
    std::ptrdiff_t lineEnds(std::size_t token) const {
        return isSpace(token) ? lineEndsIn(m_document.text(m_tokens[token])) : 0;
    }

    const WrittenDocument& m_document;
    const std::vector<Token>& m_tokens;
    std::vector<Fate> m_fates;
};

} // namespace

std::string WrittenElement::attribute(const std::string& key) const {
    const auto found = attributes.find(key);
    return found == attributes.end() ? std::string() : found->second;
}

std::string withoutPrefix(const std::string& name) {
    return name.substr(name.find(':') + 1); // npos + 1 is the beginning
}

std::set<std::string> wordsIn(const WrittenElement& element,
                              const std::set<std::string>& attributes) {
    std::set<std::string> words;
    for (const auto& [attribute, value] : element.attributes) {
        std::istringstream text(attributes.contains(attribute) ? value : "");
        words.insert(std::istream_iterator<std::string>(text), {});
    }
    for (const WrittenElement& child : element.children)
        words.merge(wordsIn(child, attributes));
    return words;
}

std::set<std::string> namesIn(const WrittenElement& element,
                              const std::set<std::string>& attributes) {
    std::set<std::string> names;
    for (const std::string& word : wordsIn(element, attributes))
        names.insert(withoutPrefix(word));
    return names;
}

WrittenDocument::WrittenDocument(std::string_view text) : m_text(text) {
    for (std::size_t at = 0; at < text.size(); at = m_tokens.back().end)
        m_tokens.push_back(tokenAt(at));
    auto token = std::find_if(m_tokens.cbegin(), m_tokens.cend(), [](const Token& candidate) {
        return candidate.kind == Token::Start || candidate.kind == Token::Empty;
    });
    if (token != m_tokens.cend())
        m_element = elementOf(token);
}

Token WrittenDocument::tokenAt(std::size_t begin) const {
    const std::string_view rest = m_text.substr(begin);
    if (rest.front() != '<') {
        const std::size_t end = std::min(m_text.find('<', begin), m_text.size());
        const bool blank = isBlank(m_text.substr(begin, end - begin));
        return {blank ? Token::Blank : Token::Other, begin, end};
    }
    if (rest.starts_with("<!--"))
        return {Token::Comment, begin, behind("-->", begin + 4)};
    if (rest.starts_with("<![CDATA["))
        return {Token::Other, begin, behind("]]>", begin)};
    if (rest.starts_with("<?"))
        return {Token::Other, begin, behind("?>", begin)};
    if (rest.starts_with("<!"))
        return {Token::Other, begin, endOfDoctype(begin)};
    const std::size_t end = endOfTag(begin);
    if (rest.starts_with("</"))
        return {Token::End, begin, end};
    return {m_text[end - 2] == '/' ? Token::Empty : Token::Start, begin, end};
}

std::size_t WrittenDocument::endOfTag(std::size_t begin) const {
    std::size_t at = begin;
    while ((at = m_text.find_first_of("\"'>", at)) != std::string_view::npos && m_text[at] != '>')
        at = behind(m_text.substr(at, 1), at + 1);
    if (at == std::string_view::npos)
        throw std::runtime_error("a tag has no end");
    return at + 1;
}

std::size_t WrittenDocument::endOfDoctype(std::size_t begin) const {
    std::size_t at = begin;
    int depth = 0;
    while ((at = m_text.find_first_of("\"'<>[]", at)) != std::string_view::npos) {
        const std::string_view rest = m_text.substr(at);
        if (rest.starts_with("<!--")) {
            at = behind("-->", at);
            continue;
        }
        if (rest.starts_with("<?")) {
            at = behind("?>", at);
            continue;
        }
        if (rest.front() == '"' || rest.front() == '\'') {
            at = behind(rest.substr(0, 1), at + 1);
            continue;
        }
        depth += rest.front() == '<' ? 1 : rest.front() == '>' ? -1 : 0;
        ++at;
        if (depth == 0)
            return at;
    }
    throw std::runtime_error("a document type has no end");
}

std::size_t WrittenDocument::behind(std::string_view mark, std::size_t from) const {
    const std::size_t at = m_text.find(mark, from);
    if (at == std::string_view::npos)
        throw std::runtime_error("there is no " + std::string(mark));
    return at + mark.size();
}

WrittenElement WrittenDocument::elementOf(std::vector<Token>::const_iterator& token) const {
    WrittenElement element;
    element.tag = text(*token);
    element.name = withoutPrefix(
        std::string(element.tag.substr(1, element.tag.find_first_of(behindName) - 1)));
    element.attributes = attributesOf(element.tag);
    element.begin = token->begin;
    if (token->kind == Token::Start) {
        while ((++token)->kind != Token::End) {
            if (token + 1 == m_tokens.end())
                throw std::runtime_error("an element has no end");
            if (token->kind == Token::Start || token->kind == Token::Empty)
                element.children.push_back(elementOf(token));
        }
    }
    element.end = token->end;
    return element;
}

SchemaCut::SchemaCut(const WrittenDocument& original, const WrittenDocument& result)
    : m_original(original),
      m_result(result),
      m_aligned(align(original.element(), result.element(), {}, m_elements)) {}

bool SchemaCut::align(const WrittenElement& original, const WrittenElement& result,
                      const CutElement& place, std::vector<CutElement>& cut) const {
    if (original.tag != result.tag)
        return false;
    const bool isInside = place.isInInlineType || (place.owner && original.name == "element");
    auto kept = result.children.begin();
    for (const WrittenElement& child : original.children) {
        const CutElement here = {&child, place.owner ? place.owner : &child, isInside};
        std::vector<CutElement> cutInside;
        if (kept != result.children.end() && align(child, *kept, here, cutInside)) {
            cut.insert(cut.end(), cutInside.begin(), cutInside.end());
            ++kept;
        } else if (canBeCut(child)) {
            cut.push_back(here);
        } else {
            return false;
        }
    }
    return kept == result.children.end();
}

std::string SchemaCut::difference() const {
    if (!m_aligned)
        return "its elements are not those of the original, in their order";
    const std::string tokens = differenceOfTokens();
    return tokens.empty() ? differenceOfLines() : tokens;
}

std::string SchemaCut::differenceOfTokens() const {
    const TokenFates fates(m_original, m_elements);
    const auto& tokens = m_original.tokens();
    auto kept = m_result.tokens().begin();
    const auto end = m_result.tokens().end();
    const auto skipBlank = [&] {
        while (kept != end && kept->kind == Token::Blank)
            ++kept;
    };
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind == Token::Blank || fates[i] == TokenFates::Goes)
            continue;
        skipBlank();
        const std::string_view expected = m_original.text(tokens[i]);
        if (kept != end && m_result.text(*kept) == expected)
            ++kept;
        else if (fates[i] != TokenFates::MayGo)
            return "lost: " + std::string(expected) +
                   "\ninstead: " + std::string(kept == end ? "" : m_result.text(*kept));
    }
    skipBlank();
    return kept == end ? "" : "too much: " + std::string(m_result.text(*kept));
}

std::string SchemaCut::differenceOfLines() const {
    if (!std::all_of(m_elements.begin(), m_elements.end(),
                     [this](const CutElement& cut) { return isOnLinesOfItsOwn(*cut.element); }))
        return {};
    const std::vector<std::string_view> lines = linesOf(m_original.text());
    auto original = lines.begin();
    for (const std::string_view line : linesOf(m_result.text())) {
        original = std::find(original, lines.end(), line);
        if (original == lines.end())
            return "a new line: \"" + std::string(line) + '"';
        ++original;
    }
    return {};
}

bool SchemaCut::isOnLinesOfItsOwn(const WrittenElement& element) const {
    const std::string_view text = m_original.text();
    const std::size_t begin = text.substr(0, element.begin).rfind('\n') + 1;
    const std::size_t end = std::min(text.find('\n', element.end), text.size());
    return isBlank(text.substr(begin, element.begin - begin)) &&
           isBlankOrComment(text.substr(element.end, end - element.end));
}

} // namespace Orvant::Support
