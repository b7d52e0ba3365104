#include "JsonTree.h"

#include <charconv>
#include <limits>

namespace {

constexpr int kMaxDepth = 32;
constexpr std::size_t kUsualNodes = 2048; // two hands

} // namespace

const JsonNode &JsonNode::find(std::string_view wanted) const
{
    static const JsonNode none;
    if (kind != Kind::Object)
        return none;
    for (const JsonNode *child = first(); child; child = after(child)) {
        if (child->key == wanted)
            return *child;
    }
    return none;
}

JsonTree::JsonTree(std::string_view json)
    : m_rest(json)
{
    m_nodes.reserve(kUsualNodes);
    m_isValid = readValue({}, 0);
    skipBlanks();
    m_isValid = m_isValid && m_rest.empty();
    if (!m_isValid)
        m_nodes.assign(1, JsonNode());
}

bool JsonTree::readValue(std::string_view key, int depth)
{
    using Kind = JsonNode::Kind;
    skipBlanks();
    if (m_rest.empty() || depth > kMaxDepth)
        return false;
    const std::size_t place = m_nodes.size();
    JsonNode &node = m_nodes.emplace_back(); // until the next
    node.key = key;
    switch (m_rest.front()) {
    case '{':
        node.kind = Kind::Object;
        break;
    case '[':
        node.kind = Kind::Array;
        break;
    case '"':
        node.kind = Kind::Text;
        return readText(node.text);
    case 't':
    case 'f':
        node.kind = Kind::Bool;
        node.flag = m_rest.front() == 't';
        return takeWord(node.flag ? "true" : "false");
    case 'n':
        return takeWord("null");
    default:
        node.kind = Kind::Number;
        return readNumber(node);
    }
    const char end = node.kind == Kind::Object ? '}' : ']';
    m_rest.remove_prefix(1);
    skipBlanks();
    std::size_t count = 0;
    if (!take(end)) {
        do {
            if (!readMember(end, depth + 1))
                return false;
            ++count;
            skipBlanks();
        } while (take(','));
        if (!take(end))
            return false;
    }
    m_nodes[place].count = count;
    m_nodes[place].span = m_nodes.size() - place;
    return true;
}

/// A value, in an object with its key.
bool JsonTree::readMember(char end, int depth)
{
    std::string_view key;
    if (end == '}') {
        skipBlanks();
        if (!readText(key))
            return false;
        skipBlanks();
        if (!take(':'))
            return false;
    }
    return readValue(key, depth);
}

bool JsonTree::readNumber(JsonNode &node)
{
    // The library would also take words such as "inf".
    const std::size_t first = m_rest.front() == '-' ? 1 : 0;
    if (first >= m_rest.size() || m_rest[first] < '0' || m_rest[first] > '9')
        return false;
    const auto [end, error] = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(),
                                              node.number);
    if (error == std::errc::result_out_of_range)
        node.number = std::numeric_limits<double>::infinity();
    node.text = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.data()));
    m_rest.remove_prefix(node.text.size());
    return true;
}

bool JsonTree::readText(std::string_view &text)
{
    if (!take('"'))
        return false;
    for (std::size_t i = 0; i < m_rest.size(); ++i) {
        if (m_rest[i] == '\\') {
            ++i;
        } else if (m_rest[i] == '"') {
            text = m_rest.substr(0, i);
            m_rest.remove_prefix(i + 1);
            return true;
        }
    }
    return false;
}

bool JsonTree::takeWord(std::string_view word)
{
    if (m_rest.substr(0, word.size()) != word)
        return false;
    m_rest.remove_prefix(word.size());
    return true;
}

bool JsonTree::take(char c)
{
    if (m_rest.empty() || m_rest.front() != c)
        return false;
    m_rest.remove_prefix(1);
    return true;
}

void JsonTree::skipBlanks()
{
    const std::size_t start = m_rest.find_first_not_of(" \t\r\n");
    m_rest.remove_prefix(start == std::string_view::npos ? m_rest.size() : start);
}
