// SPDX-License-Identifier: MIT
// Text on its way into a file, handed over in large pieces.
#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace exchange {

/// Takes the next piece of a file; throws when it cannot be written.
using Sink = std::function<void(std::string_view)>;

class Output {
public:
    explicit Output(Sink sink) : sink_(std::move(sink)), text_(2 * kPiece) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void add(char c) { *room(1) = c, ++size_; }
    void add(std::string_view text) {
        std::memcpy(room(text.size()), text.data(), text.size());
        size_ += text.size();
    }

    /// Room for that many characters at the end; `added` tells how many of them were used.
    char* room(std::size_t length) {
        if (text_.size() - size_ < length) text_.resize(2 * text_.size() + length);
        return text_.data() + size_;
    }
    void added(std::size_t length) { size_ += length; }

    /// Between two records: hands over what has gathered, once it is a piece.
    void end_record() {
        if (size_ >= kPiece) flush();
    }
    /// Hands over the rest. What is not flushed when the object goes is lost.
    void flush() {
        sink_({text_.data(), size_});
        size_ = 0;
    }

private:
    static constexpr std::size_t kPiece = std::size_t{128} << 10;

    Sink sink_;
    std::vector<char> text_;
    std::size_t size_ = 0;
};

}  // namespace exchange
