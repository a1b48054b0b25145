/**
 * Texts of kelto.hpp in tests: a row of what is expected and what was given, and a format that becomes a text or the
 * name of its result.
 */
#ifndef KELTO_TESTS_HPP_TEXTS_H
#define KELTO_TESTS_HPP_TEXTS_H

#include "kelto.hpp"

#include <gtest/gtest.h>
#include <string>

struct Expected
{
    std::string text, given;
};

inline std::string nameOf(const std::error_code &failure)
{
    const char *const name = KTResultName(failure.value());
    return name != nullptr ? name : std::to_string(failure.value());
}

template <class... Arguments>
std::string text_with(const kelto::format_options &options, const std::string &format, const Arguments &...arguments)
{
    std::error_code failure;
    const kelto::prepared_format prepared(format, options, failure);
    if (failure)
        return nameOf(failure);
    std::string text = prepared.format(failure, arguments...), same;
    prepared.format_to(std::back_inserter(same), failure, arguments...);
    EXPECT_EQ(text, same);
    return failure ? nameOf(failure) : text;
}

template <class... Arguments> std::string text_of(const std::string &format, const Arguments &...arguments)
{
    return text_with({}, format, arguments...);
}

#endif
