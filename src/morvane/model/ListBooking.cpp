#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace morvane {

// The sample texts are written the way they were first typed in, with a comma
// and blanks after the last member; the lenient reader takes them as they are.

std::string List::myDate1() {
    return R"({"title": "Date", "alias": "--Date--", "list": "1 Jan 2023 Mon:0.0,2 Jan 2023 Tue:0.0",  })";
}

std::string List::myDeparture() {
    return R"({"title": "Your departure & destination", "alias": "Location", )"
           R"("list": "Bellingham to SeaTac:80.0,SeaTac to Bellingham:75.0",  })";
}

std::string List::myBellingham() {
    return R"({"title": "Your departure time", "alias": "+Bellingham to SeaTac", )"
           R"("list": "0335AM:1.0,0505AM:2.0,0635AM:3.0,0735AM:4.0",  })";
}

std::string List::mySeaTac() {
    return R"({"title": "Your departure Time", "alias": "+SeaTac to Bellingham", )"
           R"("list": "1335PM:5.0,1505PM:6.0,1635PM:7.0,1735PM:8.0",  })";
}

NodePtr List::defaultDict(std::string_view text) {
    json::ReadOptions options;
    options.syntax = json::Syntax::Lenient;
    return json::parseNode(text, options);
}

ListPtr List::bookData() {
    auto list = List::make();
    for (const std::string& text : {myDate1(), myDeparture(), myBellingham(), mySeaTac()}) {
        // A text that cannot be read leaves its record out.
        if (auto record = defaultDict(text)) list->push(record);
    }
    return list;
}

} // namespace morvane
