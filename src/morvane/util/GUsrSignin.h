#pragma once
// GUsrSignin: the signed-in user's record, kept in the application's settings
// store under "usrSignin" so the user stays signed in across restarts.
//
// All operations are static and safe from any thread; sharedInstance exists
// for code that wants an object and holds no state.

#include <morvane/model/Value.h>

#include <string_view>

namespace morvane {

class GUsrSignin {
  public:
    static constexpr std::string_view kUser = "usrSignin";

    // The once-made shared instance (thread-safe).
    static GUsrSignin& sharedInstance();

    // Stores the record (any NodeTree value) and writes it through; the absent value signs out.
    static void usrSave(const Value& user);
    // The stored record, or the absent value.
    static Value usrRead();

  private:
    GUsrSignin() = default;
};

} // namespace morvane
