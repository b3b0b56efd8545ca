#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <typeinfo>

namespace lum::test {

/// Succeeds when the call throws exactly this type with exactly this text.
template <class Exception, class Call>
testing::AssertionResult Throws(Call&& i_call, std::string_view i_text) {
  try {
    i_call();
  } catch (Exception const& exception) {
    if (typeid(exception) != typeid(Exception)) {
      return testing::AssertionFailure() << "threw a derived type: " << typeid(exception).name();
    }
    if (exception.what() != i_text) {
      return testing::AssertionFailure() << "threw \"" << exception.what() << "\", not \"" << i_text << '"';
    }
    return testing::AssertionSuccess();
  } catch (std::exception const& exception) {
    return testing::AssertionFailure() << "threw another type: " << typeid(exception).name();
  }
  return testing::AssertionFailure() << "threw nothing";
}

}  // namespace lum::test
