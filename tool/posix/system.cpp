// SPDX-License-Identifier: MIT
// Program, terminal, paths, times and code pages on POSIX systems.
#include "tool/system.h"

#include <iconv.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <mutex>

#include "tool/failure.h"

namespace tool {

std::vector<std::string> program_arguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

unsigned long process_number() {
    return static_cast<unsigned long>(getpid());
}

bool is_terminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

int terminal_width(std::FILE* stream) {
    winsize size{};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::optional<std::string> ask_hidden(const std::string& question) {
    if (!is_terminal(stdin) || !is_terminal(stderr)) return std::nullopt;
    termios shown{};
    if (tcgetattr(STDIN_FILENO, &shown) != 0) return std::nullopt;
    termios hidden = shown;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    std::fputs(question.c_str(), stderr);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    std::string word;
    const bool answered = static_cast<bool>(std::getline(std::cin, word));
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
    std::fputc('\n', stderr);
    check_interrupt();
    return answered ? std::optional(word) : std::nullopt;
}

void handle_interrupt(void (*handler)()) {
    static void (*called)() = nullptr;
    called = handler;
    struct sigaction action {};
    action.sa_handler = [](int) { called(); };
    // A system call that waits, such as one for the keyboard, ends; work in progress asks between two pieces.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

fs::path path_of(const std::string& text) {
    return text;
}

std::string text_of(const fs::path& path) {
    return path.native();
}

std::string library_path(const fs::path& path) {
    return path.native();
}

std::tm local_time(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

std::int64_t seconds_of(std::tm local) {
    // Without this name `mktime` looks at that file again in every call.
    static const int named = setenv("TZ", ":/etc/localtime", 0);
    static_cast<void>(named);
    local.tm_isdst = -1;
    return std::mktime(&local);
}

struct CodePage::State {
    iconv_t to_text, from_text;
    std::mutex mutex{};  // each of the two has a state
};

CodePage::CodePage(const std::string& name)
    : state_(new State{iconv_open("UTF-8", name.c_str()), iconv_open(name.c_str(), "UTF-8")}) {
    const auto none = reinterpret_cast<iconv_t>(-1);
    if (state_->to_text == none || state_->from_text == none)
        throw Failure(name, "unknown encoding; `iconv -l` lists those that there are");
}

CodePage::~CodePage() {
    iconv_close(state_->to_text);
    iconv_close(state_->from_text);
}

std::size_t CodePage::decode(std::string_view bytes, std::string& text) const {
    constexpr std::size_t longest = 4;
    const std::lock_guard lock(state_->mutex);
    for (std::size_t length = 1; length <= longest && length <= bytes.size(); ++length) {
        char* from = const_cast<char*>(bytes.data());
        std::size_t from_left = length;
        char buffer[16];
        char* to = buffer;
        std::size_t to_left = sizeof buffer;
        iconv(state_->to_text, nullptr, nullptr, nullptr, nullptr);
        if (iconv(state_->to_text, &from, &from_left, &to, &to_left) == static_cast<std::size_t>(-1)) continue;
        if (to == buffer) continue;
        text.append(buffer, to);
        return length;
    }
    return 0;
}

bool CodePage::encode(std::string_view text, std::string& bytes) const {
    const std::lock_guard lock(state_->mutex);
    std::string buffer(text.size() * 4 + 16, '\0');
    char* from = const_cast<char*>(text.data());
    std::size_t from_left = text.size();
    char* to = buffer.data();
    std::size_t to_left = buffer.size();
    iconv(state_->from_text, nullptr, nullptr, nullptr, nullptr);
    // A count above 0 is of characters that were replaced by others.
    if (iconv(state_->from_text, &from, &from_left, &to, &to_left) != 0) return false;
    bytes.append(buffer.data(), to);
    return true;
}

}  // namespace tool
