#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <gtest/gtest.h>

using namespace morvane;

TEST(ListBooking, bookData_yields_the_four_records_in_order) {
    const std::vector<std::vector<std::string>> expected = {
        {"Date", "--Date--", "1 Jan 2023 Mon:0.0,2 Jan 2023 Tue:0.0"},
        {"Your departure & destination", "Location", "Bellingham to SeaTac:80.0,SeaTac to Bellingham:75.0"},
        {"Your departure time", "+Bellingham to SeaTac", "0335AM:1.0,0505AM:2.0,0635AM:3.0,0735AM:4.0"},
        {"Your departure Time", "+SeaTac to Bellingham", "1335PM:5.0,1505PM:6.0,1635PM:7.0,1735PM:8.0"},
    };
    auto list = List::bookData();
    ASSERT_EQ(list->size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        auto record = list->at(i).node();
        ASSERT_TRUE(record) << i;
        EXPECT_FALSE(record->isReadOnly());
        EXPECT_EQ(
            record->entries(),
            (Node::Entries{{"title", expected[i][0]}, {"alias", expected[i][1]}, {"list", expected[i][2]}}));
    }
    // Every call builds new records that the caller may change freely.
    list->at(0).node()->set("title", "changed");
    EXPECT_EQ(List::bookData()->at(0).node()->get("title"), Value("Date"));
}

TEST(ListBooking, sample_texts_carry_a_trailing_comma_that_defaultDict_accepts) {
    for (const std::string& text :
         {List::myDate1(), List::myDeparture(), List::myBellingham(), List::mySeaTac()}) {
        const auto close = text.rfind('}');
        ASSERT_NE(close, std::string::npos);
        const auto lastSignificant = text.find_last_not_of(' ', close - 1);
        EXPECT_EQ(text[lastSignificant], ',') << text;
        EXPECT_TRUE(List::defaultDict(text)) << text;
    }
    EXPECT_EQ(List::defaultDict("not json"), nullptr);
    EXPECT_EQ(List::defaultDict(R"(["a",])"), nullptr); // valid, but not an object
    EXPECT_EQ(List::defaultDict(R"({"a": "b",,})"), nullptr);
}
