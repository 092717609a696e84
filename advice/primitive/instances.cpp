#include "advice/primitive/instances.h"

#include <algorithm>

namespace advice {

namespace {

constexpr int MAX_CONSTANT_DEPTH = 64;
constexpr int LINES_BEFORE = 2;  // comments this far above an instance belong to it

// Words between "parameter" and the name that it declares.
const std::set<std::string> TYPE_WORDS = {"integer", "real", "signed", "unsigned", "int",
                                          "logic",   "bit",  "string", "time",     "realtime"};
const std::set<std::string> NET_WORDS = {"wire", "logic", "reg", "tri"};

// One module of a source.
class MODULE
{
public:
    MODULE(const std::vector<TOKEN>& tokens, std::size_t begin, std::size_t end)
        : m_tokens(tokens), m_begin(begin), m_end(end)
    {
        for (std::size_t at = m_begin; at < m_end; ++at) {
            if (m_tokens[at].is("parameter") || m_tokens[at].is("localparam")) {
                collect_constants(at + 1);
            }
            if (m_tokens[at].m_kind == TOKEN_KIND::WORD) {
                ++m_mentions[m_tokens[at].m_text];
            }
        }
        discount_declarations();
    }

    std::string name() const { return m_begin + 1 < m_end ? m_tokens[m_begin + 1].m_text : ""; }

    VERILOG_VALUE evaluate_at(std::size_t* at)
    {
        return evaluate(m_tokens, at, [this](const std::string& word) { return look_up(word); });
    }

    // Whether a net is named anywhere but in its declaration and in one connection.
    bool is_used(const std::string& net) const
    {
        const auto found = m_mentions.find(net);
        return found == m_mentions.end() || found->second > 1;
    }

private:
    // [type] [range] NAME = value {, NAME = value}
    void collect_constants(std::size_t at)
    {
        while (at < m_end) {
            at = skip_type(at);
            if (at + 1 >= m_end || m_tokens[at].m_kind != TOKEN_KIND::WORD ||
                !m_tokens[at + 1].is("=")) {
                return;
            }
            m_constants.emplace(m_tokens[at].m_text, at + 2);
            at = end_of_value(at + 2);
            if (at >= m_end || !m_tokens[at].is(",")) {
                return;
            }
            ++at;
        }
    }

    std::size_t skip_type(std::size_t at) const
    {
        while (at < m_end) {
            if (m_tokens[at].is("[")) {
                while (at < m_end && !m_tokens[at].is("]")) {
                    ++at;
                }
            } else if (TYPE_WORDS.count(m_tokens[at].m_text) == 0) {
                break;
            }
            ++at;
        }
        return at;
    }

    // Where the ",", ";" or ")" behind a value stands.
    std::size_t end_of_value(std::size_t at) const
    {
        int depth = 0;
        for (; at < m_end; ++at) {
            const TOKEN& token = m_tokens[at];
            if (token.is("(") || token.is("{") || token.is("[")) {
                ++depth;
            } else if (depth > 0 && (token.is(")") || token.is("}") || token.is("]"))) {
                --depth;
            } else if (token.is(";") || (depth == 0 && (token.is(",") || token.is(")")))) {
                break;
            }
        }
        return at;
    }

    VERILOG_VALUE look_up(const std::string& word)
    {
        if (const auto known = m_values.find(word); known != m_values.end()) {
            return known->second;
        }
        const auto constant = m_constants.find(word);
        if (constant == m_constants.end()) {
            return VERILOG_VALUE::unknown("'" + word + "' is no constant of this module");
        }
        if (m_depth >= MAX_CONSTANT_DEPTH) {
            return VERILOG_VALUE::unknown("'" + word + "' depends on itself");
        }
        ++m_depth;
        std::size_t at = constant->second;
        VERILOG_VALUE value = evaluate_at(&at);
        --m_depth;
        m_values[word] = value;
        return value;
    }

    // Declarations of nets do not count as uses.
    void discount_declarations()
    {
        bool is_declaration = false;
        for (std::size_t at = m_begin; at < m_end; ++at) {
            const TOKEN& token = m_tokens[at];
            const bool follows_direction =
                at > m_begin && (m_tokens[at - 1].is("output") || m_tokens[at - 1].is("input") ||
                                 m_tokens[at - 1].is("inout"));
            if (token.m_kind == TOKEN_KIND::WORD && NET_WORDS.count(token.m_text) > 0) {
                is_declaration = !follows_direction;
            } else if (token.is(";") || token.is("=") || token.is(")")) {
                is_declaration = false;
            } else if (is_declaration && token.m_kind == TOKEN_KIND::WORD) {
                --m_mentions[token.m_text];
            }
        }
    }

    const std::vector<TOKEN>& m_tokens;
    std::size_t m_begin;
    std::size_t m_end;
    std::map<std::string, std::size_t> m_constants;  // where their values begin
    std::map<std::string, VERILOG_VALUE> m_values;   // those that were needed
    std::map<std::string, int> m_mentions;
    int m_depth = 0;
};

// Reads the instances of one module.
class INSTANCE_READER
{
public:
    INSTANCE_READER(const std::vector<TOKEN>& tokens, std::size_t begin, std::size_t end,
                    const std::set<std::string>& primitives)
        : m_tokens(tokens),
          m_at(begin),
          m_end(end),
          m_primitives(primitives),
          m_module(tokens, begin, end)
    {
    }

    void run(std::vector<INSTANCE>* list)
    {
        const std::size_t first = list->size();
        for (++m_at; m_at < m_end;) {
            if (take("(*")) {
                read_attributes();
            } else if (m_tokens[m_at].is("defparam")) {
                ++m_at;
                read_defparams();
            } else if (starts_instance()) {
                read_statement(list);
            } else {
                forget_attributes(m_tokens[m_at++]);
            }
        }
        apply_defparams(list, first);
    }

private:
    bool take(const char* symbol)
    {
        if (m_at >= m_end || !m_tokens[m_at].is(symbol)) {
            return false;
        }
        ++m_at;
        return true;
    }

    bool next_is_word() const { return m_at < m_end && m_tokens[m_at].m_kind == TOKEN_KIND::WORD; }

    bool starts_instance() const
    {
        if (!next_is_word() || m_primitives.count(m_tokens[m_at].m_text) == 0 ||
            m_at + 1 >= m_end || m_tokens[m_at - 1].is(".")) {
            return false;
        }
        const TOKEN& next = m_tokens[m_at + 1];
        return next.is("#") || next.m_kind == TOKEN_KIND::WORD;
    }

    void forget_attributes(const TOKEN& token)
    {
        if (token.is(";")) {
            m_attributes.clear();
        }
    }

    // NAME [= value] {, NAME [= value]} *)
    void read_attributes()
    {
        while (m_at < m_end && !take("*)")) {
            const std::string name = m_tokens[m_at++].m_text;
            if (take("=")) {
                const VERILOG_VALUE value = m_module.evaluate_at(&m_at);
                m_attributes[name] =
                    value.is_number() ? value.m_number.to_fraction() : value.m_text;
            }
        }
    }

    // INSTANCE.NAME = value {, ...} ;
    void read_defparams()
    {
        while (m_at + 3 < m_end && m_tokens[m_at + 1].is(".") && m_tokens[m_at + 3].is("=")) {
            DEFPARAM set;
            set.m_instance = m_tokens[m_at].m_text;
            set.m_parameter = m_tokens[m_at + 2].m_text;
            set.m_line = m_tokens[m_at + 2].m_line;
            m_at += 4;
            set.m_value = m_module.evaluate_at(&m_at);
            m_defparams.push_back(set);
            if (!take(",")) {
                return;
            }
        }
    }

    void apply_defparams(std::vector<INSTANCE>* list, std::size_t first)
    {
        for (const DEFPARAM& set : m_defparams) {
            for (std::size_t i = first; i < list->size(); ++i) {
                INSTANCE& instance = (*list)[i];
                if (instance.m_name == set.m_instance) {
                    instance.m_parameters[set.m_parameter] = set.m_value;
                    instance.m_parameter_lines[set.m_parameter] = set.m_line;
                }
            }
        }
    }

    // PRIMITIVE [#(...)] NAME (...) {, NAME (...)} ;
    void read_statement(std::vector<INSTANCE>* list)
    {
        INSTANCE instance;
        instance.m_primitive = m_tokens[m_at].m_text;
        instance.m_line = m_tokens[m_at].m_line;
        instance.m_module = m_module.name();
        instance.m_attributes = m_attributes;
        m_attributes.clear();
        ++m_at;
        if (take("#") && take("(")) {
            read_parameters(&instance);
        }
        do {
            INSTANCE each = instance;
            if (next_is_word()) {
                each.m_name = m_tokens[m_at++].m_text;
            }
            skip_range();
            if (take("(")) {
                read_ports(&each);
            }
            each.m_last_line = m_at > 0 ? m_tokens[m_at - 1].m_line : each.m_line;
            list->push_back(each);
        } while (take(","));
    }

    void skip_range()
    {
        if (take("[")) {
            while (m_at < m_end && !take("]")) {
                ++m_at;
            }
        }
    }

    // Behind "(": .NAME(value) {, .NAME(value)} )
    void read_parameters(INSTANCE* instance)
    {
        while (m_at < m_end && !take(")")) {
            if (take(".") && next_is_word()) {
                const TOKEN& name = m_tokens[m_at++];
                instance->m_parameter_lines[name.m_text] = name.m_line;
                if (take("(")) {
                    read_parameter(name.m_text, instance);
                }
            } else {
                ++m_at;
            }
        }
    }

    void read_parameter(const std::string& name, INSTANCE* instance)
    {
        if (take(")")) {
            return;
        }
        instance->m_parameters[name] = m_module.evaluate_at(&m_at);
        std::string rest;
        take_to_closing(&rest);
        if (!rest.empty()) {
            instance->m_parameters[name] =
                VERILOG_VALUE::unknown("an expression that is not understood at '" + rest + "'");
        }
    }

    // Behind "(": .NAME(net), .NAME, .* or plain nets, which primitives have no use for
    void read_ports(INSTANCE* instance)
    {
        while (m_at < m_end && !take(")")) {
            if (take(".") && next_is_word()) {
                const TOKEN& name = m_tokens[m_at++];
                std::string text = name.m_text;
                if (take("(")) {
                    text.clear();
                    take_to_closing(&text);
                }
                instance->m_ports[name.m_text] = {text, m_module.is_used(text)};
                instance->m_port_lines[name.m_text] = name.m_line;
            } else {
                ++m_at;
            }
        }
    }

    // The text up to the ")" that closes what is open.
    void take_to_closing(std::string* text)
    {
        for (int depth = 1; m_at < m_end; ++m_at) {
            const TOKEN& token = m_tokens[m_at];
            depth += token.is("(") ? 1 : token.is(")") ? -1 : 0;
            if (depth == 0) {
                ++m_at;
                return;
            }
            *text += token.m_text;
        }
    }

    struct DEFPARAM
    {
        std::string m_instance;
        std::string m_parameter;
        VERILOG_VALUE m_value;
        int m_line = 0;
    };

    const std::vector<TOKEN>& m_tokens;
    std::size_t m_at;
    std::size_t m_end;
    const std::set<std::string>& m_primitives;
    MODULE m_module;
    std::map<std::string, std::string> m_attributes;
    std::vector<DEFPARAM> m_defparams;
};

// The words that stand in the lines of comments.
std::map<int, std::vector<std::string>> list_words(const VERILOG_SOURCE& source)
{
    std::map<int, std::vector<std::string>> words;
    for (const COMMENT& comment : source.m_comments) {
        words[comment.m_line];
    }
    for (const TOKEN& token : source.m_tokens) {
        const auto line = words.find(token.m_line);
        if (line != words.end() && token.m_kind == TOKEN_KIND::WORD) {
            line->second.push_back(token.m_text);
        }
    }
    return words;
}

bool names_a_net(const INSTANCE& instance, const std::vector<std::string>& words)
{
    return std::any_of(instance.m_ports.begin(), instance.m_ports.end(), [&](const auto& port) {
        return std::find(words.begin(), words.end(), port.second.m_text) != words.end();
    });
}

// The comments of an instance: in its statement, above it as far as it is the next one, and in the
// lines of its module before it that name its nets.
void take_comments(const VERILOG_SOURCE& source, std::size_t first, int module_line,
                   std::vector<INSTANCE>* list)
{
    const std::map<int, std::vector<std::string>> words = list_words(source);
    int previous_end = module_line - 1;
    for (std::size_t i = first; i < list->size(); ++i) {
        INSTANCE& instance = (*list)[i];
        const int from = std::max(instance.m_line - LINES_BEFORE, previous_end + 1);
        for (const COMMENT& comment : source.m_comments) {
            const int line = comment.m_line;
            const std::vector<std::string>& beside = words.at(line);
            const bool is_within = line >= from && line <= instance.m_last_line;
            const bool is_before = line >= module_line && line < instance.m_line;
            if (is_within || (is_before && names_a_net(instance, beside))) {
                instance.m_comments.push_back({comment.m_text, line, beside});
            }
        }
        previous_end = instance.m_last_line;
    }
}

// Cuts a source into its modules; what stands behind the last one counts as one.
void read_modules(const VERILOG_SOURCE& source, const std::set<std::string>& primitives,
                  std::vector<INSTANCE>* list)
{
    const std::vector<TOKEN>& tokens = source.m_tokens;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        if (tokens[at].is("module")) {
            begin = at;
        }
        if (tokens[at].is("endmodule") || (at + 1 == tokens.size() && begin < at)) {
            const std::size_t first = list->size();
            INSTANCE_READER(tokens, begin, at + 1, primitives).run(list);
            take_comments(source, first, tokens[begin].m_line, list);
            begin = at + 1;
        }
    }
}

}  // namespace

INSTANCES find_instances(const std::string& text, const std::set<std::string>& primitives)
{
    const VERILOG_SOURCE source = read_verilog(text);
    INSTANCES found;
    found.m_problem = source.m_problem;
    read_modules(source, primitives, &found.m_list);
    return found;
}

}  // namespace advice
