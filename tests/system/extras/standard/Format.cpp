// The formatters for std::format. Exits with 0, or prints what differs.

#include <extras/Format.h>

#include <cstdio>
#include <format>
#include <locale>
#include <string>
#include <string_view>

#include "tests/support/Comma.h"

namespace {

using namespace lum;

bool has_failed = false;

void Expect(std::string_view i_text, std::string_view i_expected) {
  if (i_text == i_expected) return;
  has_failed = true;
  std::fprintf(stderr, "\"%.*s\" instead of \"%.*s\"\n", static_cast<int>(i_text.size()), i_text.data(),
               static_cast<int>(i_expected.size()), i_expected.data());
}

void ExpectRefusal(std::string_view i_format, auto const& i_value) {
  try {
    Expect(std::vformat(i_format, std::make_format_args(i_value)), "an exception");
  } catch (std::format_error const&) {
  }
}

}  // namespace

int main() {
  Vector<float, 3> const vector(1, 2.5F, -3);
  Expect(std::format("{}", vector), "(1, 2.5, -3)");
  Expect(std::format("{:.2f}", vector), "(1.00, 2.50, -3.00)");
  Expect(std::format("{:*>{}.1f}", vector, 6), "(***1.0, ***2.5, **-3.0)");
  Expect(std::format("{:L<4}", vector), "(1LLL, 2.5L, -3LL)");
  std::locale const comma = test::MakeCommaLocale();
  Expect(std::format(comma, "{:.1Lf} {:.1f}", vector, vector), "(1,0; 2,5; -3,0) (1.0, 2.5, -3.0)");
  Expect(std::format(comma, "{:L}", vector), "(1; 2,5; -3)");

  Expect(std::format("{}", Point<double, 2>(0.1, 2)), "(0.1, 2)");
  Expect(std::format("{}", Plane<double>(0, 0, 2, 4)), "(0, 0, 1, 2)");
  Expect(std::format("{:03}", Range<int>(1, 20)), "[001, 020]");
  Expect(std::format("{}", Quaternionf()), "(0, 0, 0, 1)");
  Expect(std::format("{}", Matrix<float>::Translate(5, 6, 7)),
         "((1, 0, 0, 5), (0, 1, 0, 6), (0, 0, 1, 7), (0, 0, 0, 1))");
  Expect(std::format("{:#x}", CubeElementIds::Edge13), "CubeElementIds::Edge with value: 0x11");
  Expect(std::format("{}", CubeSpace(6)), "CubeSpace with value: 6");
  Expect(std::format("{:.1f}", optional<Vector<float, 3>>(vector)), "(1.0, 2.5, -3.0)");
  Expect(std::format("{:.1f}", optional<Vector<float, 3>>()), "nullopt");
  ExpectRefusal("{:d}", vector);
  ExpectRefusal("{:.1f}", CubeElementIds::Edge13);
  return has_failed ? 1 : 0;
}
