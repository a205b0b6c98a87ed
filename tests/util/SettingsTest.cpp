// The values the kit keeps in the application's settings store, under the
// keys it has always used, and the airport city read from them.
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Settings.h>
#include <morvane/util/GAirportCode.h>
#include <morvane/util/GUsrSignin.h>

#include <gtest/gtest.h>

using morvane::GAirportCode;
using morvane::GUsrSignin;
using morvane::List;
using morvane::Node;
using morvane::Value;
namespace sys = morvane::sys;

namespace {

class StoredSettings : public testing::Test {
  protected:
    void SetUp() override { clear(); }
    void TearDown() override {
        clear();
        sys::App::setIdentifier(identifier_);
    }
    static void clear() {
        auto store = sys::Settings::standard();
        for (const auto& key : store->keys())
            store->remove(key);
    }
    std::string identifier_ = sys::App::identifier();
};

// A stored city keeps its last path piece and reads lower case; without one
// the identifier's last piece is the city, unchanged.
TEST_F(StoredSettings, airport_city_is_the_stored_last_piece_in_lower_case_or_the_identifiers) {
    GAirportCode::airportCitySave("Tokyo/Haneda");
    EXPECT_EQ(GAirportCode::airportCity(), "haneda");
    EXPECT_EQ(sys::Settings::standard()->text("airportCity"), "Haneda");
    GAirportCode::airportCitySave("ÎLE-DE-FRANCE");
    EXPECT_EQ(GAirportCode::airportCity(), "île-de-france");
    // A trailing "/" stores the empty last piece, which is still a stored city.
    GAirportCode::airportCitySave("Japan/");
    EXPECT_EQ(GAirportCode::airportCity(), "");
    sys::Settings::standard()->remove("airportCity");
    ASSERT_TRUE(sys::App::setIdentifier("com.example.Osaka"));
    EXPECT_EQ(GAirportCode::airportCity(), "Osaka");
    ASSERT_TRUE(sys::App::setIdentifier("Nagoya"));
    EXPECT_EQ(GAirportCode::airportCity(), "Nagoya");
}

TEST_F(StoredSettings, values_live_under_the_fixed_keys) {
    EXPECT_FALSE(GAirportCode::deviceToken());
    EXPECT_FALSE(GAirportCode::applePayRead());
    EXPECT_TRUE(GAirportCode::airportMutable().isAbsent());
    EXPECT_TRUE(GUsrSignin::usrRead().isAbsent());

    GAirportCode::deviceTokenSave("tok-123");
    GAirportCode::applePaySave(Value("manual"));
    auto airports = List::make({Node::make({{"code", "HND"}}), Node::make({{"code", "KIX"}})});
    GAirportCode::airportMutableSave(Value(airports));
    auto user = Node::make({{"name", "Aiko"}, {"points", 120}});
    GUsrSignin::usrSave(Value(user));

    auto store = sys::Settings::standard();
    EXPECT_EQ(store->text("deviceTokenSave"), "tok-123");
    EXPECT_EQ(store->text("apple-pay-manual"), "manual");
    EXPECT_EQ(store->value("airportMutable"), Value(airports));
    EXPECT_EQ(store->value("usrSignin"), Value(user));

    EXPECT_EQ(GAirportCode::deviceToken(), "tok-123");
    EXPECT_EQ(GAirportCode::applePayRead(), "manual");
    EXPECT_EQ(GAirportCode::airportMutable(), Value(airports));
    EXPECT_EQ(GUsrSignin::usrRead(), Value(user));
    // Written through: a second connection to the same file sees the values.
    sys::Settings reopened(store->file());
    EXPECT_EQ(reopened.value("usrSignin"), Value(user));

    // A payment setting that is not a text reads as nothing; saving the absent
    // value signs the user out.
    GAirportCode::applePaySave(Value(3));
    EXPECT_FALSE(GAirportCode::applePayRead());
    GUsrSignin::usrSave(Value());
    EXPECT_TRUE(GUsrSignin::usrRead().isAbsent());
}

} // namespace
