#include <stdexcept>

#include <gtest/gtest.h>

#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

TEST(ValueVectorTest, ElementsKeepTheirPlacesAndOthersAreRefused) {
    Value vector = Value(ValueType::vector) << 2 << 4;
    vector.insert(vector.begin_vector(), 1);
    vector.insert(vector.find(std::size_t{2}), 3);
    EXPECT_EQ(vector, Value(ValueType::vector) << 1 << 2 << 3 << 4);
    EXPECT_THROW(vector[std::size_t{4}], std::out_of_range);
    EXPECT_THROW(vector["a"], std::logic_error);
    EXPECT_THROW(Value(1) << 1, std::logic_error);
}

}  // namespace
}  // namespace ZrHmiSrv
