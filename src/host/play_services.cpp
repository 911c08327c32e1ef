#include "host/play_services.h"

#include <ostream>

#include <utility>

namespace dbn::host {

std::string OneLine(const std::string& text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            line += "\\n";
            ++i;
        } else {
            line += text[i];
        }
    }
    return line;
}

PlayServices::PlayServices(std::ostream& out) : out_(out) {}

void PlayServices::QueueAnswer(long code) {
    answers_.push_back(code);
}

long PlayServices::Answer(const std::string& line) {
    if (answers_.empty()) {
        out_ << "no answer queued for: " << line << "\n";
        throw RunStopped{kRunUnanswered};
    }
    const long code = answers_.front();
    answers_.pop_front();
    out_ << line << " => " << code << "\n";
    return code;
}

int PlayServices::MsgBox(const std::string& text, form::MsgBoxButtons buttons, form::MsgBoxIcon,
                         const std::string& title) {
    const std::string line = "box " + title + ": " + OneLine(text);
    if (title == "Error") {
        failed_ = true;
    }
    // The details belong to this box only; printed after its answer.
    const std::string details = std::exchange(nextDetails_, std::string());
    auto printDetails = [&] {
        if (!details.empty()) {
            out_ << "details: " << OneLine(details) << "\n";
        }
    };
    if (buttons == form::MsgBoxButtons::OK) {
        out_ << line << " => " << form::kAnswerOK << "\n";
        printDetails();
        return form::kAnswerOK;
    }
    int answer = 0;
    try {
        answer = static_cast<int>(Answer(line));
    } catch (const RunStopped&) {
        printDetails();
        throw;
    }
    printDetails();
    return answer;
}

long PlayServices::Confirm(const std::string& text, const std::string&) {
    return Answer("confirm: " + OneLine(text));
}

void PlayServices::ShowModal(form::GUI& form) {
    if (runModal) {
        runModal(form);
    }
}

void PlayServices::EndModal(form::GUI& form) {
    if (endModal) {
        endModal(form);
    }
}

}  // namespace dbn::host
