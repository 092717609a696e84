#include "app/devices/database.h"

#include "app/output/input_error.h"
#include "app/output/input_file.h"
#include "app/words/letter_case.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <cstdlib>

namespace {

// What a family may take. docs/limits.md says why.
constexpr long long MOST_BYTES = 64LL << 20;
constexpr long long MOST_STATEMENTS = 4LL << 20;
constexpr long long MOST_TABLE_GROUPS = 1LL << 20;

// Why a family cannot be read, or where its fault is shown. `path` is its directory.
std::string reason_for(const READ_FAULTS& faults, const std::string& path,
                       const std::string& file_name)
{
    const std::string refused = faults.file(path);
    if (!refused.empty()) {
        return refused + ": " + faults.reason();
    }
    const std::string file = tidy_path(path + "/" + file_name);
    return file + ": it or a table of it is at fault; see pllcalc lint " + file;
}

}  // namespace

std::optional<std::string> find_database(const std::optional<std::string>& word)
{
    if (word && word->empty()) {
        throw USAGE_ERROR("--database", "'' is not legal; expected a directory");
    }
    if (word) {
        return word;
    }
    const char* const value = std::getenv(DATABASE_VARIABLE);
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return value;
}

std::string list_legal(const std::vector<std::string_view>& names)
{
    constexpr std::size_t MOST = 20;
    std::string text = "legal are ";
    for (std::size_t i = 0; i < names.size() && i < MOST; ++i) {
        text += i == 0 ? "" : ", ";
        text += names[i];
    }
    if (names.size() > MOST) {
        text += " and " + std::to_string(names.size() - MOST) + " more";
    }
    return names.empty() ? "there is none" : text;
}

std::string_view find_name(const std::string& argument, const std::string& name,
                           const std::string& place, const std::vector<std::string_view>& names)
{
    for (const std::string_view candidate : names) {
        if (equal_but_for_case(name, candidate)) {
            return candidate;
        }
    }
    throw USAGE_ERROR(argument, "'" + name + "' is unknown" + place + "; " + list_legal(names) +
                                    suggest(name, names));
}

DATABASE::DATABASE(const std::string& directory, bool is_confined) : m_directory(directory)
{
    PLL_READ_LIMITS limits;
    limits.m_bytes = MOST_BYTES;
    limits.m_statements = MOST_STATEMENTS;
    limits.m_table_groups = MOST_TABLE_GROUPS;
    limits.m_is_confined = is_confined;
    m_manager.set_read_limits(limits);
    m_manager.set_observer(&m_faults);
    if (!m_manager.read(directory.c_str())) {
        const bool is_refused = m_faults.is_incomplete() && !m_faults.file(directory).empty();
        throw INPUT_ERROR("cannot read the database: " + directory + "/" + PATH_FILE + ": " +
                          (is_refused ? m_faults.reason() : "names no family"));
    }
}

std::vector<std::string_view> DATABASE::list_families() const
{
    std::vector<std::string_view> names;
    for (int i = 0; i < m_manager.get_number_of_families(); ++i) {
        names.emplace_back(m_manager.get_family(i));
    }
    return names;
}

const PLL_FAMILY_INFO& DATABASE::find_family(const std::string& argument,
                                             const std::optional<std::string>& name)
{
    const std::vector<std::string_view> names = list_families();
    if (name) {
        return read_family(find_name(argument, *name, " to the database", names));
    }
    if (names.size() != 1) {
        throw USAGE_ERROR(argument, "needed; " + list_legal(names));
    }
    return read_family(names.front());
}

const PLL_FAMILY_INFO& DATABASE::read_family(std::string_view name)
{
    const std::string text(name);
    m_faults.forget();
    const PLL_FAMILY_INFO* const family = m_manager.read_family_info(text.c_str());
    const bool is_incomplete = m_faults.is_incomplete();
    if (family != nullptr && !is_incomplete) {
        return *family;
    }
    const PLL_FAMILY_INFO& record = *m_manager.create_family_info(text.c_str());
    if (record.m_path == nullptr || record.m_file_name == nullptr) {
        throw INPUT_ERROR("cannot read family " + text + ": the path file names no file for it");
    }
    throw INPUT_ERROR("cannot read family " + text + ": " +
                      reason_for(m_faults, record.m_path, record.m_file_name));
}
