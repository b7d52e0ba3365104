#pragma once

#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

/// One value of a JSON text. The values inside an array or object follow it in the tree's list,
/// each with its own behind it.
struct JsonNode
{
    enum class Kind { Null, Bool, Number, Text, Array, Object };

    Kind kind = Kind::Null;
    bool flag = false;            ///< of a Bool
    double number = std::nan(""); ///< of a Number; infinite for one that a double cannot hold
    std::string_view key;         ///< in an object, as written, with its escapes
    std::string_view text;        ///< of a Text or Number, the same
    std::size_t count = 0;        ///< of values directly inside
    std::size_t span = 1;         ///< of places in the list, with all that is inside

    /// The values directly inside, one after another: until nullptr.
    const JsonNode *first() const { return count > 0 ? this + 1 : nullptr; }
    const JsonNode *after(const JsonNode *child) const
    {
        const JsonNode *next = child + child->span;
        return next < this + span ? next : nullptr;
    }

    /// The first of that key in an object; a Null if there is none.
    const JsonNode &find(std::string_view wanted) const;
};

/// A JSON text in a list that is freed as one. Qt's parser loses the memory of objects and arrays
/// under a key that comes twice, which would let a stranger use up all there is.
class JsonTree
{
public:
    /// `json` outlives the tree. Of a broken text, or one nested more than 32 deep, the root is
    /// Null.
    explicit JsonTree(std::string_view json);

    bool isValid() const { return m_isValid; }
    const JsonNode &root() const { return m_nodes.front(); }

private:
    bool readValue(std::string_view key, int depth);
    bool readMember(char end, int depth);
    bool readNumber(JsonNode &node);
    bool readText(std::string_view &text);
    bool takeWord(std::string_view word);
    bool take(char c);
    void skipBlanks();

    std::string_view m_rest;
    std::vector<JsonNode> m_nodes;
    bool m_isValid = false;
};
