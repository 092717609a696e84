// A value of a JSON document together with its place in it, "request.outputs[1].phase_deg". Reading
// it as another type than it has, or a key that there is not, throws a USAGE_ERROR that names the
// place and what would be right.
#pragma once

#include "app/json/json.h"

#include "advice/numbers/rational.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class PLACE
{
public:
    // The document must outlive the place.
    PLACE(std::string path, const JSON& value) : m_path(std::move(path)), m_value(&value) {}

    const std::string& get_path() const { return m_path; }
    const JSON& get_value() const { return *m_value; }
    bool is_null() const { return m_value->is_null(); }

    std::string read_text() const;
    bool read_bool() const;
    int read_int(int least, int most) const;
    double read_number() const;
    // A decimal or a fraction in a string, as all frequencies and ratios are.
    advice::RATIONAL read_fraction() const;
    // A number, or a fraction in a string.
    advice::RATIONAL read_exact() const;
    // "m" for 0, or the number of an output from 1.
    int read_feedback(int outputs) const;

    // Calls `read` with each element.
    void read_list(const std::function<void(const PLACE&)>& read) const;
    // The member of that key; throws where it is missing.
    PLACE require(const char* key) const;
    // Throws unless this is an object and each of its keys is one of `legal`.
    void expect_keys(const std::vector<std::string_view>& legal) const;

    // Throws: what was expected here.
    [[noreturn]] void refuse(const std::string& expected) const;

    PLACE member(const std::string& key) const;

private:
    std::string m_path;
    const JSON* m_value;
};

// One key of an object and how its value is read into a RECORD.
template <class RECORD>
struct JSON_FIELD
{
    const char* m_key;
    void (*m_read)(const PLACE& value, RECORD* record);
};

// Reads an object whose legal keys are those of the fields, in the order of the fields. Keys that
// it leaves out leave the record as it is.
template <class RECORD, std::size_t COUNT>
void read_fields(const PLACE& place, const JSON_FIELD<RECORD> (&fields)[COUNT], RECORD* record)
{
    std::vector<std::string_view> keys;
    for (const JSON_FIELD<RECORD>& field : fields) {
        keys.emplace_back(field.m_key);
    }
    place.expect_keys(keys);
    for (const JSON_FIELD<RECORD>& field : fields) {
        if (place.get_value().contains(field.m_key)) {
            field.m_read(place.member(field.m_key), record);
        }
    }
}
