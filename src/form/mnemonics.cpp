#include "form/mnemonics.h"

#include <cctype>
#include <functional>
#include <map>

namespace dbn::form {
namespace {

char Lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

bool Usable(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

// A caption's candidate letters, best first: word starts, then the rest.
std::vector<char> Candidates(const std::string& caption) {
    std::vector<char> starts;
    std::vector<char> others;
    auto add = [](std::vector<char>& to, char c) {
        for (char had : to) {
            if (had == c) {
                return;
            }
        }
        to.push_back(c);
    };
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (!Usable(caption[i])) {
            continue;
        }
        const bool wordStart = i == 0 || !Usable(caption[i - 1]);
        add(wordStart ? starts : others, Lower(caption[i]));
    }
    for (char c : others) {
        add(starts, c);
    }
    return starts;
}

}  // namespace

std::vector<std::optional<char>> ChooseMnemonics(const std::vector<std::string>& captions) {
    std::vector<std::vector<char>> candidates;
    for (const std::string& caption : captions) {
        candidates.push_back(Candidates(caption));
    }
    // A matching of captions to letters, grown one caption at a time along
    // augmenting paths: a caption once given a letter keeps one.
    std::map<char, std::size_t> owner;
    std::vector<std::optional<char>> chosen(captions.size());
    // A free letter first; else one taken from a caption that can move on.
    std::function<bool(std::size_t, std::map<char, bool>&)> place =
        [&](std::size_t caption, std::map<char, bool>& seen) {
            for (char c : candidates[caption]) {
                if (!owner.contains(c)) {
                    owner[c] = caption;
                    chosen[caption] = c;
                    return true;
                }
            }
            for (char c : candidates[caption]) {
                if (seen[c]) {
                    continue;
                }
                seen[c] = true;
                if (place(owner[c], seen)) {
                    owner[c] = caption;
                    chosen[caption] = c;
                    return true;
                }
            }
            return false;
        };
    for (std::size_t caption = 0; caption < captions.size(); ++caption) {
        std::map<char, bool> seen;
        place(caption, seen);
    }
    return chosen;
}

std::string MarkMnemonic(const std::string& caption, std::optional<char> letter) {
    std::string marked;
    bool placed = !letter.has_value();
    for (char c : caption) {
        if (c == '&') {
            marked += "&&";
            continue;
        }
        if (!placed && Lower(c) == *letter) {
            marked += '&';
            placed = true;
        }
        marked += c;
    }
    return marked;
}

}  // namespace dbn::form
