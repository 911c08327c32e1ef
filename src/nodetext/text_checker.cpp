#include "nodetext/text_checker.h"

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace dbn::nodetext {

namespace {

using Json = nlohmann::ordered_json;

// Line and column (from 1) of a byte offset.
std::pair<std::size_t, std::size_t> LineAndColumn(std::string_view text, std::size_t offset) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return {line, column};
}

// The deepest nesting a node file has: the document, its list of nodes, a
// node, its confirmation, the list of prompts and one prompt.
constexpr std::size_t kDeepestNesting = 6;

// A first pass over the text before any value is built: malformed JSON and
// numbers beyond the range of numbers named by line and column, nesting
// deeper than a node file has and a key given twice in one object named by
// their JSON path. The first problem ends the pass.
class TextChecker {
public:
    explicit TextChecker(std::string_view text) : text_(text) {}

    std::optional<Problem> Check() {
        Json::sax_parse(text_.begin(), text_.end(), this);
        return problem_;
    }

    bool null() { return Element(); }
    bool boolean(bool) { return Element(); }
    bool number_integer(Json::number_integer_t) { return Element(); }
    bool number_unsigned(Json::number_unsigned_t) { return Element(); }
    bool number_float(Json::number_float_t, const Json::string_t&) { return Element(); }
    bool string(Json::string_t&) { return Element(); }
    bool binary(Json::binary_t&) { return Element(); }
    bool start_object(std::size_t) { return Open(false); }
    bool start_array(std::size_t) { return Open(true); }
    bool end_object() { return Close(); }
    bool end_array() { return Close(); }
    bool key(Json::string_t& key) {
        Frame& frame = frames_.back();
        if (!frame.keys.insert(key).second) {
            problem_ = Problem{Path(frames_.size() - 1), "the key \"" + key + "\" is given twice"};
            return false;
        }
        frame.key = key;
        return true;
    }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::detail::exception& error) {
        // A number is named where it begins, any other error where reading
        // stopped.
        const bool number = dynamic_cast<const nlohmann::detail::out_of_range*>(&error) != nullptr;
        const std::size_t at = number && position >= token.size() ? position - token.size()
                               : position == 0                    ? 0
                                                                  : position - 1;
        const auto [line, column] = LineAndColumn(text_, at);
        std::string reason;
        if (number) {
            reason = "the number " + token + " is beyond the range of numbers";
        } else {
            // "[json.exception.parse_error.101] parse error at line 1, column 2: X" -> X
            reason = error.what();
            if (const std::size_t colon = reason.find(": "); colon != std::string::npos) {
                reason = reason.substr(colon + 2);
            }
            reason = "malformed JSON: " + reason;
        }
        problem_ = Problem{"", "line " + std::to_string(line) + ", column " +
                                   std::to_string(column) + ": " + reason};
        return false;
    }

private:
    struct Frame {
        bool array = false;
        std::size_t elements = 0;  // of an array, begun so far
        std::string key;           // of an object, the latest
        std::set<std::string> keys;
    };

    // The JSON path of the value being read inside the first `depth` frames.
    std::string Path(std::size_t depth) const {
        std::string path;
        for (std::size_t i = 0; i < depth; ++i) {
            const Frame& frame = frames_[i];
            path += frame.array ? "[" + std::to_string(frame.elements - 1) + "]"
                                : (path.empty() ? "" : ".") + frame.key;
        }
        return path;
    }
    bool Element() {
        if (!frames_.empty() && frames_.back().array) {
            ++frames_.back().elements;
        }
        return true;
    }
    bool Open(bool array) {
        Element();
        if (frames_.size() == kDeepestNesting) {
            problem_ = Problem{Path(frames_.size()), "is nested deeper than a node file goes (" +
                                                         std::to_string(kDeepestNesting) +
                                                         " levels of objects and lists)"};
            return false;
        }
        frames_.push_back({array, 0, {}, {}});
        return true;
    }
    bool Close() {
        frames_.pop_back();
        return true;
    }

    std::string_view text_;
    std::vector<Frame> frames_;
    std::optional<Problem> problem_;
};

}  // namespace

std::optional<Problem> CheckText(std::string_view text) {
    return TextChecker(text).Check();
}

}  // namespace dbn::nodetext
