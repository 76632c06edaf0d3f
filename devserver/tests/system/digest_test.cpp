// SHA-256 of known texts.
#include "devserver/system/digest.h"

#include <gtest/gtest.h>

#include "devserver/tsql/scalar/conversion_parts.h"

namespace devsql::system {
namespace {

TEST(Digest, IsThatOfThePublishedExamples) {
    EXPECT_EQ(HexText(Sha256("abc")), "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD");
    EXPECT_EQ(HexText(Sha256("")), "E3B0C44298FC1C149AFBF4C8996FB92427AE41E4649B934CA495991B7852B855");
    EXPECT_EQ(HexText(Sha256(std::string(1000000, 'a'))),
              "CDC76E5C9914FB9281A1C7E284D73E67F1809A48A497200E046D39CCC7112CD0");
}

} // namespace
} // namespace devsql::system
