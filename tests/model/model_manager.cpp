// The model's path file and the loading of families on first use.
#include "model_database.h"
#include "model_tokens.h"

namespace {

std::string small_letters(std::string text)
{
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return text;
}

std::string plain_path(const std::string& name)
{
    std::string plain;
    std::size_t start = 0;
    while (start <= name.size()) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        const std::string step = name.substr(start, end - start);
        if (!step.empty() && step != ".") {
            plain += "/" + step;
        }
        start = end + 1;
    }
    return plain;
}

}  // namespace

const std::string* model_find_file(const MODEL_DATABASE& database, const std::string& name)
{
    const auto found = database.m_files.find(plain_path(name));
    return found == database.m_files.end() ? nullptr : &found->second;
}

bool model_same_name(const std::string& a, const std::string& b)
{
    return small_letters(a) == small_letters(b);
}

MODEL_FAMILY* model_find_or_create_family(MODEL_DATABASE* database, const std::string& name)
{
    for (MODEL_FAMILY& family : database->m_families) {
        if (model_same_name(family.m_name, name)) {
            return &family;
        }
    }
    database->m_families.emplace_back();
    database->m_families.back().m_name = name;
    return &database->m_families.back();
}

bool model_read(MODEL_DATABASE* database, const std::string& directory)
{
    const bool has_slash = !directory.empty() && directory.back() == '/';
    const std::string base = has_slash ? directory : directory + "/";
    const std::string* const text = model_find_file(*database, base + "ddb_pll_path.txt");
    if (text == nullptr) {
        return false;
    }
    int family_lines = 0;
    for (const std::string& line : model_lines(*text)) {
        MODEL_WORDS words(line);
        const std::optional<std::string> name = words.take_name();
        if (!name) {
            continue;
        }
        MODEL_FAMILY* const family = model_find_or_create_family(database, *name);
        const std::optional<std::string> path = words.take_name();
        const std::optional<std::string> file_name = path ? words.take_name() : std::nullopt;
        if (path) {
            family->m_path = base + *path;
        }
        if (file_name) {
            family->m_file_name = file_name;
        }
        ++family_lines;
    }
    return family_lines > 0;
}

MODEL_FAMILY* model_read_family(MODEL_DATABASE* database, const std::string& name,
                                MODEL_REPORTS& reports)
{
    MODEL_FAMILY* const family = model_find_or_create_family(database, name);
    if (!family->m_parts.empty()) {
        return family;
    }
    if (!family->m_file_name) {
        return nullptr;
    }
    const bool is_read =
        model_read_family_file(database, *family->m_path, *family->m_file_name, reports);
    return is_read ? family : nullptr;
}
