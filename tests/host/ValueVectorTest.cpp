#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

std::vector<int> content(const Value& vector) {
    std::vector<int> result;
    for (auto element = vector.begin_vector(); element != vector.end_vector(); ++element)
        result.push_back(static_cast<int>(*element));
    return result;
}

TEST(ValueVectorTest, ElementsKeepTheirPlaces) {
    Value vector;
    vector << 2 << 3;
    EXPECT_EQ(vector.type(), ValueType::vector);
    vector.insert(vector.begin_vector(), 1);
    vector.insert(vector.end_vector(), 5);
    const auto inserted = vector.insert(vector.find(std::size_t{3}), 4);
    EXPECT_EQ(inserted, vector.find(std::size_t{3}));
    EXPECT_EQ(content(vector), (std::vector{1, 2, 3, 4, 5}));
    vector.resize(2);
    vector.resize(3);
    EXPECT_EQ(content(vector), (std::vector{1, 2, 0}));
    EXPECT_FALSE(vector[std::size_t{2}].isset());

    Value empty;
    empty.insert(empty.begin_vector(), 7);
    EXPECT_EQ(content(empty), (std::vector{7}));
}

TEST(ValueVectorTest, RefusesWhatDoesNotExist) {
    Value vector = Value(ValueType::vector) << 1;
    EXPECT_EQ(vector.find(std::size_t{1}), vector.end_vector());
    EXPECT_THROW(vector[std::size_t{1}], std::out_of_range);
    EXPECT_THROW(std::as_const(vector)[std::size_t{1}], std::out_of_range);
    EXPECT_THROW(Value()[std::size_t{0}], std::out_of_range);
    EXPECT_FALSE(vector.get_vector().get(1).isset());

    for (Value value : {Value(1), Value("text"), Value(ValueType::map)}) {
        EXPECT_EQ(value.begin_vector(), value.end_vector());
        EXPECT_THROW(value << 1, std::logic_error);
        EXPECT_THROW(value.resize(1), std::logic_error);
        EXPECT_THROW(value.insert(value.begin_vector(), 1), std::logic_error);
    }
}

}  // namespace
}  // namespace ZrHmiSrv
