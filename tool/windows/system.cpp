// SPDX-License-Identifier: MIT
// Program, terminal, paths, times and code pages on Windows.
#include "tool/system.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>  // after windows.h
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "tool/failure.h"
#include "tool/windows/utf16.h"

namespace tool {

std::wstring to_utf16(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string to_utf8(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

namespace {

/// Text is UTF-8, and colours are control sequences as elsewhere.
void prepare_console() {
    SetConsoleOutputCP(CP_UTF8);
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        DWORD mode = 0;
        const HANDLE console = GetStdHandle(stream);
        if (GetConsoleMode(console, &mode)) SetConsoleMode(console, mode | 4 /* control sequences */);
    }
}

}  // namespace

std::vector<std::string> program_arguments(int, char**) {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    prepare_console();
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) texts.push_back(to_utf8(arguments[i]));
    LocalFree(arguments);
    return texts;
}

std::optional<std::string> environment(const char* name) {
    const wchar_t* value = _wgetenv(to_utf16(name).c_str());
    return value ? std::optional(to_utf8(value)) : std::nullopt;
}

unsigned long process_number() {
    return GetCurrentProcessId();
}

bool is_terminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

int terminal_width(std::FILE* stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    return GetConsoleScreenBufferInfo(console, &info) ? info.srWindow.Right - info.srWindow.Left : 80;
}

std::optional<std::string> ask_hidden(const std::string& question) {
    const HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
    DWORD shown = 0;
    if (!is_terminal(stdin) || !is_terminal(stderr) || !GetConsoleMode(console, &shown)) return std::nullopt;
    std::fputs(question.c_str(), stderr);
    SetConsoleMode(console, shown & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
    wchar_t typed[256];
    DWORD count = 0;
    const bool answered = ReadConsoleW(console, typed, 256, &count, nullptr) != 0;
    SetConsoleMode(console, shown);
    std::fputc('\n', stderr);
    check_interrupt();
    while (count > 0 && (typed[count - 1] == L'\n' || typed[count - 1] == L'\r')) --count;
    return answered ? std::optional(to_utf8({typed, count})) : std::nullopt;
}

void handle_interrupt(void (*handler)()) {
    static void (*called)() = nullptr;
    called = handler;
    const auto routine = [](DWORD) WINAPI -> BOOL { return called(), TRUE; };
    SetConsoleCtrlHandler(routine, TRUE);
}

fs::path path_of(const std::string& text) {
    return to_utf16(text);
}

std::string text_of(const fs::path& path) {
    return to_utf8(path.native());
}

namespace {

/// A path in the system's code page; empty when it has characters that the code page lacks.
std::string in_code_page(const std::wstring& wide) {
    BOOL replaced = FALSE;
    const int length =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.c_str(), -1, nullptr, 0, nullptr, &replaced);
    std::string text(static_cast<std::size_t>(std::max(length, 1)), '\0');
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.c_str(), -1, text.data(), length, nullptr, nullptr);
    text.pop_back();
    return replaced ? std::string() : text;
}

std::wstring short_path(const std::wstring& path) {
    wchar_t buffer[MAX_PATH];
    const DWORD length = GetShortPathNameW(path.c_str(), buffer, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::wstring(buffer, length) : std::wstring();
}

}  // namespace

std::string library_path(const fs::path& path) {
    std::string text = in_code_page(path.native());
    if (!text.empty()) return text;
    // A file that does not exist yet has no short name, but its folder has one.
    std::wstring known = short_path(path.native());
    if (known.empty() && path.has_parent_path())
        known = (fs::path(short_path(path.parent_path().native())) / path.filename()).native();
    text = in_code_page(known);
    if (text.empty()) throw Failure(text_of(path), "the system's code page lacks characters of this path; rename it");
    return text;
}

std::tm local_time(std::int64_t seconds) {
    const __time64_t time = seconds;
    const std::tm* local = _localtime64(&time);
    return local ? *local : std::tm{};
}

std::int64_t seconds_of(std::tm local) {
    local.tm_isdst = -1;
    return _mktime64(&local);
}

// ---- Code pages --------------------------------------------------------------------------------------------------

struct CodePage::State {
    UINT number;
};

namespace {

UINT code_page_number(std::string name) {
    struct Known {
        const char* name;
        UINT number;
    };
    constexpr Known names[] = {
        {"SHIFT_JIS", 932},    {"SHIFT-JIS", 932},     {"SJIS", 932},      {"GBK", 936},      {"GB2312", 936},
        {"EUC-KR", 949},       {"BIG5", 950},          {"GB18030", 54936}, {"LATIN1", 28591}, {"ISO-8859-1", 28591},
        {"ISO-8859-2", 28592}, {"ISO-8859-15", 28605}, {"KOI8-R", 20866}};
    for (char& letter : name) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    for (const Known& known : names)
        if (name == known.name) return known.number;
    for (const char* prefix : {"CP", "WINDOWS-", "IBM", ""})
        if (name.rfind(prefix, 0) == 0) return static_cast<UINT>(std::atoi(name.c_str() + std::strlen(prefix)));
    return 0;
}

}  // namespace

CodePage::CodePage(const std::string& name) : state_(std::make_unique<State>(State{code_page_number(name)})) {
    if (state_->number == 0 || !IsValidCodePage(state_->number))
        throw Failure(name, "unknown encoding; give the number of a code page, such as CP932");
}

CodePage::~CodePage() = default;

std::size_t CodePage::decode(std::string_view bytes, std::string& text) const {
    for (int length = 1; length <= 4 && length <= static_cast<int>(bytes.size()); ++length) {
        // Without this a lead byte may pass for a character of its own.
        if (length == 1 && IsDBCSLeadByteEx(state_->number, static_cast<BYTE>(bytes[0]))) continue;
        wchar_t wide[4];
        const int count = MultiByteToWideChar(state_->number, MB_ERR_INVALID_CHARS, bytes.data(), length, wide, 4);
        if (count == 0) continue;
        text += to_utf8({wide, static_cast<std::size_t>(count)});
        return static_cast<std::size_t>(length);
    }
    return 0;
}

bool CodePage::encode(std::string_view text, std::string& bytes) const {
    const std::wstring wide = to_utf16(text);
    if (wide.empty()) return true;
    const bool full_range = state_->number == 54936;  // has every character, and no report of replaced ones
    const DWORD flags = full_range ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL replaced = FALSE;
    std::string buffer(wide.size() * 4, '\0');
    const int length =
        WideCharToMultiByte(state_->number, flags, wide.data(), static_cast<int>(wide.size()), buffer.data(),
                            static_cast<int>(buffer.size()), nullptr, full_range ? nullptr : &replaced);
    bytes.append(buffer, 0, static_cast<std::size_t>(length));
    return length > 0 && !replaced;
}

}  // namespace tool
