#include <morvane/sys/Settings.h>
#include <morvane/util/GUsrSignin.h>

namespace morvane {

GUsrSignin& GUsrSignin::sharedInstance() {
    static GUsrSignin instance;
    return instance;
}

void GUsrSignin::usrSave(const Value& user) {
    auto store = sys::Settings::standard();
    store->setValue(kUser, user);
    store->synchronize();
}

Value GUsrSignin::usrRead() {
    return sys::Settings::standard()->value(kUser);
}

} // namespace morvane
