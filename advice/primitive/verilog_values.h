// Values of constant expressions in Verilog.
#pragma once

#include "advice/numbers/rational.h"
#include "advice/primitive/verilog_tokens.h"

#include <functional>
#include <string>

namespace advice {

struct VERILOG_VALUE
{
    enum class KIND
    {
        INTEGER,
        REAL,  // divides without a rest, unlike an integer
        TEXT,
        UNKNOWN  // m_text says why
    };

    KIND m_kind = KIND::UNKNOWN;
    RATIONAL m_number;
    std::string m_text;

    static VERILOG_VALUE integer(const RATIONAL& number) { return {KIND::INTEGER, number, ""}; }
    static VERILOG_VALUE real(const RATIONAL& number) { return {KIND::REAL, number, ""}; }
    static VERILOG_VALUE text(const std::string& text) { return {KIND::TEXT, {}, text}; }
    static VERILOG_VALUE unknown(const std::string& why) { return {KIND::UNKNOWN, {}, why}; }

    bool is_number() const { return m_kind == KIND::INTEGER || m_kind == KIND::REAL; }
    bool is_known() const { return m_kind != KIND::UNKNOWN; }
};

// The value of a name that stands in an expression.
using LOOK_UP = std::function<VERILOG_VALUE(const std::string& name)>;

// Evaluates the constant expression that begins at token `*at`, and moves it behind. What is no
// such expression is unknown; then `*at` stands where it became so.
VERILOG_VALUE evaluate(const std::vector<TOKEN>& tokens, std::size_t* at, const LOOK_UP& look_up);

// The value of a number as written: "12", "2.5e3", "4'b0101".
VERILOG_VALUE value_of_number(const std::string& text);

}  // namespace advice
