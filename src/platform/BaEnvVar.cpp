#include <KestoDM/platform/BaEnvVar.h>

#include <charconv>
#include <cstdlib>
#include <utility>

namespace Kesto {

namespace {

char lowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerWord) {
    if (text.size() != lowerWord.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (lowerAscii(text[i]) != lowerWord[i]) {
            return false;
        }
    }
    return true;
}

bool parseBool(std::string_view text) {
    long long number = 0;
    char const* const first = text.data();
    char const* const last = first + text.size();
    auto const [ptr, ec] = std::from_chars(first, last, number);
    if (ptr == last && !text.empty()) {
        // A digit run too long for long long is still a non-zero integer.
        return ec == std::errc::result_out_of_range || (ec == std::errc() && number != 0);
    }
    return equalsIgnoringCase(text, "true") || equalsIgnoringCase(text, "yes") ||
           equalsIgnoringCase(text, "on");
}

bool parseInt(std::string_view text, long long& value) {
    // from_chars takes '-' but not '+'; a '+' must not hide a second sign.
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (text.empty() || text.front() == '-') {
            return false;
        }
    }
    if (text.empty()) {
        return false;
    }
    long long number = 0;
    char const* const last = text.data() + text.size();
    auto const [ptr, ec] = std::from_chars(text.data(), last, number);
    if (ec != std::errc() || ptr != last) {
        return false;
    }
    value = number;
    return true;
}

bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNameByte(char c) {
    return isNameStart(c) || (c >= '0' && c <= '9');
}

bool isValidName(std::string_view name) {
    if (name.empty() || !isNameStart(name.front())) {
        return false;
    }
    for (char const c : name) {
        if (!isNameByte(c)) {
            return false;
        }
    }
    return true;
}

void appendVariable(std::string& out, std::string_view name) {
    std::string const key(name);
    if (char const* const value = std::getenv(key.c_str())) {
        out += value;
    }
}

} // namespace

BaEnvVar::BaEnvVar(std::string name, Kind kind, std::string defaultValue, std::string description)
    : m_name(std::move(name)), m_kind(kind), m_default(std::move(defaultValue)),
      m_description(std::move(description)) {}

// The one table of switches. Never destroyed: switches are read from static
// destructors at process end (leak reports).
std::vector<BaEnvVar> const& BaEnvVar::table() {
    static std::vector<BaEnvVar> const* const vars = [] {
        auto* list = new std::vector<BaEnvVar>();
        list->push_back(
            BaEnvVar("KESTO_ALWAYS_PRINT_ERRORS", Kind::kBool, "0",
                     "Print errors and warnings on the standard error as soon as they are reported."));
        list->push_back(BaEnvVar("KESTO_ABORT_ON_INTERNAL_ERRORS", Kind::kBool, "0",
                                 "Abort the process when an internal error is reported."));
        list->push_back(
            BaEnvVar("KESTO_REPORT_LEAKS", Kind::kBool, "0",
                     "Report objects of the library still alive at process end on the standard error."));
        list->push_back(
            BaEnvVar("TOVARIN_DUMP_VERSION_INFO", Kind::kInt, "0",
                     "Print the version line of the library on the standard error when it is loaded."));
        list->push_back(BaEnvVar("KESTO_CONFIG_RANDOM_SEED", Kind::kInt, "0",
                                 "Allows randomizing the order under which files are loaded when loading "
                                 "config.json files when files "
                                 "are discovered providing only a path to a directory. (seed < 0 => "
                                 "time-based seed, seed == 0 => not "
                                 "randomized (default), seed > 0 => uses provided seed)."));
        list->push_back(
            BaEnvVar("KESTO_PROFILE_CONFIG_LOAD", Kind::kBool, "0",
                     "Output timings during the load of the Kesto::Library (config files, shared libs, "
                     "jsons, resources, etc.)."));
        list->push_back(BaEnvVar("KESTO_DISABLE_UNKNOWN_DEFINITIONS", Kind::kBool, "0",
                                 "Disable unknown definitions when loading JSON files."));
        list->push_back(BaEnvVar("KESTO_SAVE_URI_DEPENDENCIES", Kind::kBool, "0",
                                 "Whether to write URI dependencies in JSON files or not."));
        list->push_back(BaEnvVar("KESTO_FORCE_NON_SSE_JSON_PARSER", Kind::kBool, "0",
                                 "Force the use of the non-SSE Json parser implementation."));
        list->push_back(BaEnvVar("TOVARIN_USING_VALGRIND", Kind::kBool, "0",
                                 "Check if we are running the application using Valgrind."));
        return list;
    }();
    return *vars;
}

std::vector<BaEnvVar const*> const& BaEnvVar::getAll() {
    static std::vector<BaEnvVar const*> const* const all = [] {
        auto* list = new std::vector<BaEnvVar const*>();
        for (BaEnvVar const& var : table()) {
            list->push_back(&var);
        }
        return list;
    }();
    return *all;
}

BaEnvVar const* BaEnvVar::find(std::string_view name) {
    for (BaEnvVar const* var : getAll()) {
        if (var->getName() == name) {
            return var;
        }
    }
    return nullptr;
}

std::string BaEnvVar::currentText() const {
    char const* const value = std::getenv(m_name.c_str());
    return value != nullptr ? std::string(value) : m_default;
}

bool BaEnvVar::isSet() const {
    return std::getenv(m_name.c_str()) != nullptr;
}

bool BaEnvVar::getBool() const {
    return parseBool(currentText());
}

long long BaEnvVar::getInt() const {
    long long value = 0;
    if (parseInt(currentText(), value)) {
        return value;
    }
    if (parseInt(m_default, value)) {
        return value;
    }
    return 0;
}

std::string BaEnvVar::getString() const {
    return currentText();
}

bool BaEnvVar::getBool(std::string_view name) {
    BaEnvVar const* const var = find(name);
    return var != nullptr && var->getBool();
}

long long BaEnvVar::getInt(std::string_view name) {
    BaEnvVar const* const var = find(name);
    return var != nullptr ? var->getInt() : 0;
}

std::string BaEnvVar::getString(std::string_view name) {
    BaEnvVar const* const var = find(name);
    return var != nullptr ? var->getString() : std::string();
}

std::string BaEnvVar::expandEnvironmentPath(std::string_view path) {
    std::string out;
    out.reserve(path.size());
    std::size_t i = 0;
    while (i < path.size()) {
        char const c = path[i];
        if (c != '$' || i + 1 >= path.size()) {
            out += c;
            ++i;
            continue;
        }
        char const next = path[i + 1];
        if (next == '{') {
            std::size_t const close = path.find('}', i + 2);
            if (close != std::string_view::npos) {
                std::string_view const name = path.substr(i + 2, close - (i + 2));
                if (isValidName(name)) {
                    appendVariable(out, name);
                    i = close + 1;
                    continue;
                }
            }
            out += c;
            ++i;
            continue;
        }
        if (isNameStart(next)) {
            std::size_t end = i + 1;
            while (end < path.size() && isNameByte(path[end])) {
                ++end;
            }
            appendVariable(out, path.substr(i + 1, end - (i + 1)));
            i = end;
            continue;
        }
        out += c;
        ++i;
    }
    return out;
}

} // namespace Kesto
