#include "Operations.h"

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace morvane::tree {

namespace {

using H = Host;
using C = Changes;

// Short names for the table: N for the receiving Node, L for the receiving list.
#define N c.receiverNode()
#define L c.receiverList()

const std::vector<Operation>& table() {
    static const std::vector<Operation> rows = {
        // ---- Keyed access ----------------------------------------------------
        {"findObj:field:", "findObj", H::Node, "tt", C::Nothing,
         [](Call& c) { return N->findObj(c.text(0), c.text(1)); }},
        {"alreadyExists:", "alreadyExists", H::Node, "n", C::Nothing,
         [](Call& c) { return Value(N->alreadyExists(c.node(0))); }},
        {"isSame:target:", "isSame", H::Node, "nn", C::Nothing,
         [](Call& c) { return Value(N->isSame(c.node(0), c.node(1))); }},
        {"toSortArrayAtField:", "toSortArrayAtField", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->toSortArrayAtField(c.text(0))); }},
        {"toSortArray", "toSortArray", H::Node, "", C::Receiver, [](Call& c) { return Value(N->toSortArray()); }},
        {"toSortArray:", "toSortArray", H::Node, "b", C::Receiver,
         [](Call& c) { return Value(N->toSortArray(c.flag(0))); }},
        {"toSortArrayTxt:", "toSortArrayTxt", H::Node, "b", C::Nothing,
         [](Call& c) { return Value(N->toSortArrayTxt(c.flag(0))); }},
        {"findTxtIdx:val:ascend:", "findTxtIdx", H::Node, "ltb", C::Nothing,
         [](Call& c) { return Value(N->findTxtIdx(c.list(0), c.text(1), c.flag(2))); }},
        {"findIdx:val:field:ascend:", "findIdx", H::Node, "lvtb", C::Nothing,
         [](Call& c) { return Value(N->findIdx(c.list(0), c.value(1), c.text(2), c.flag(3))); }},
        {"findTextInArray:txt:ascend:", "findTextInArray", H::Node, "ltb", C::Nothing,
         [](Call& c) { return Value(N->findTextInArray(c.list(0), c.text(1), c.flag(2))); }},
        {"removeExtra:", "removeExtra", H::Node, "l", C::Nothing,
         [](Call& c) { return Value(N->removeExtra(c.list(0))); }},
        {"copyObj:", "copyObj", H::Node, "v", C::Nothing, [](Call& c) { return Value(N->copyObj(c.value(0))); }},
        {"copyObjExclude:", "copyObjExclude", H::Node, "v", C::Nothing,
         [](Call& c) { return Value(N->copyObjExclude(c.value(0))); }},
        {"tagChildWithKey:val:", "tagChildWithKey", H::Node, "tv", C::Receiver,
         [](Call& c) {
             N->tagChildWithKey(c.text(0), c.value(1));
             return Value();
         }},
        {"asmKey:", "asmKey", H::Node, "l", C::Nothing, [](Call& c) { return Value(N->asmKey(c.list(0))); }},
        {"areNull:", "areNull", H::Node, "l", C::Nothing, [](Call& c) { return Value(N->areNull(c.list(0))); }},
        {"containsTxt", "containsTxt", H::Node, "", C::Nothing, [](Call& c) { return Value(N->containsTxt()); }},
        {"mutableToText:", "mutableToText", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->mutableToText(c.text(0))); }},
        {"mutableToTextArray:", "mutableToTextArray", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->mutableToTextArray(c.text(0))); }},

        // ---- Conversion copies ---------------------------------------------
        {"mutableKey:", "mutableKey", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->mutableKey(c.text(0))); }},
        {"mutableArrayChange:key:", "mutableArrayChange", H::Node, "lt", C::Nothing,
         [](Call& c) { return Value(N->mutableArrayChange(c.list(0), c.text(1))); }},
        {"mutableChange", "mutableChange", H::Node, "", C::Nothing, [](Call& c) { return Value(N->mutableChange()); }},
        {"mutableArrayChange:", "mutableArrayChange", H::Node, "l", C::Nothing,
         [](Call& c) { return Value(N->mutableArrayChange(c.list(0))); }},

        // ---- Search ----------------------------------------------------------
        {"searchDict:exact:", "searchDict", H::Node, "tb", C::Nothing,
         [](Call& c) { return N->searchDict(c.text(0), c.flag(1)); }},
        {"searchArray:key:exact:", "searchArray", H::Node, "ltb", C::Nothing,
         [](Call& c) { return N->searchArray(c.list(0), c.text(1), c.flag(2)); }},
        {"valKey:", "valKey", H::Node, "t", C::Nothing, [](Call& c) { return N->valKey(c.text(0)); }},
        {"valLikeKey:", "valLikeKey", H::Node, "t", C::Nothing, [](Call& c) { return N->valLikeKey(c.text(0)); }},
        {"txtInList:", "txtInList", H::Node, "l", C::Nothing, [](Call& c) { return N->txtInList(c.list(0)); }},
        {"searchDict2:exact:", "searchDict2", H::Node, "tb", C::Nothing,
         [](Call& c) { return N->searchDict2(c.text(0), c.flag(1)); }},
        {"valKey2:", "valKey2", H::Node, "t", C::Nothing, [](Call& c) { return N->valKey2(c.text(0)); }},
        {"searchNode:exact:", "searchNode", H::Node, "tb", C::Nothing,
         [](Call& c) { return Value(N->searchNode(c.text(0), c.flag(1))); }},
        {"searchNodeArray:key:exact:", "searchNodeArray", H::Node, "ltb", C::Nothing,
         [](Call& c) { return Value(N->searchNodeArray(c.list(0), c.text(1), c.flag(2))); }},
        {"nodeKey:", "nodeKey", H::Node, "t", C::Nothing, [](Call& c) { return Value(N->nodeKey(c.text(0))); }},
        {"nodeLike:", "nodeLike", H::Node, "t", C::Nothing, [](Call& c) { return Value(N->nodeLike(c.text(0))); }},
        {"isMatch:has:exact:", "isMatch", H::Node, "ttb", C::Nothing,
         [](Call& c) { return Value(N->isMatch(c.text(0), c.text(1), c.flag(2))); }},
        {"searchContent:content:", "searchContent", H::Node, "tt", C::Nothing,
         [](Call& c) { return Value(N->searchContent(c.text(0), c.text(1))); }},
        {"searchArrayContent:key:content:", "searchArrayContent", H::Node, "ltt", C::Nothing,
         [](Call& c) { return Value(N->searchArrayContent(c.list(0), c.text(1), c.text(2))); }},
        {"searchNodeFld:val:", "searchNodeFld", H::Node, "tt", C::Nothing,
         [](Call& c) { return Value(N->searchNodeFld(c.text(0), c.text(1))); }},
        {"searchNodeFldArray:key:val:", "searchNodeFldArray", H::Node, "ltt", C::Nothing,
         [](Call& c) { return Value(N->searchNodeFldArray(c.list(0), c.text(1), c.text(2))); }},
        {"txtLikeList:", "txtLikeList", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->txtLikeList(c.text(0))); }},
        {"sortArray:", "sortArray", H::Node, "l", C::Nothing, [](Call& c) { return Value(N->sortArray(c.list(0))); }},
        {"txtLikeKey:except:", "txtLikeKey", H::Node, "tl", C::Nothing,
         [](Call& c) { return Value(N->txtLikeKey(c.text(0), c.list(1))); }},
        {"splitBy:byTxt:", "splitBy", H::Node, "tt", C::Nothing,
         [](Call& c) { return N->splitBy(c.text(0), c.text(1)); }},
        {"contentsearch:key:value:", "contentsearch", H::List, "ntt", C::Nothing,
         [](Call& c) { return Value(L->contentsearch(c.node(0), c.text(1), c.text(2))); }},
        {"arraySearch:value:", "arraySearch", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->arraySearch(c.text(0), c.text(1))); }},

        // ---- Gathering and pulling -------------------------------------------
        {"gatherTxt:front:back:", "gatherTxt", H::Node, "ttt", C::Nothing,
         [](Call& c) { return Value(N->gatherTxt(c.text(0), c.text(1), c.text(2))); }},
        {"gatherArrayTxt:key:front:back:", "gatherArrayTxt", H::Node, "lttt", C::Nothing,
         [](Call& c) { return Value(N->gatherArrayTxt(c.list(0), c.text(1), c.text(2), c.text(3))); }},
        {"gatherFloat:", "gatherFloat", H::Node, "t", C::Nothing,
         [](Call& c) { return Value(N->gatherFloat(c.text(0))); }},
        {"gatherArrayFloat:key:", "gatherArrayFloat", H::Node, "lt", C::Nothing,
         [](Call& c) { return Value(N->gatherArrayFloat(c.list(0), c.text(1))); }},
        {"gatherText:key:front:back:", "gatherText", H::List, "nttt", C::Nothing,
         [](Call& c) { return Value(L->gatherText(c.node(0), c.text(1), c.text(2), c.text(3))); }},
        {"gatherArrayText:front:back:", "gatherArrayText", H::List, "ttt", C::Nothing,
         [](Call& c) { return Value(L->gatherArrayText(c.text(0), c.text(1), c.text(2))); }},
        {"gatherFloat:key:", "gatherFloat", H::List, "nt", C::Nothing,
         [](Call& c) { return Value(L->gatherFloat(c.node(0), c.text(1))); }},
        {"gatherArrayFloat:", "gatherArrayFloat", H::List, "t", C::Nothing,
         [](Call& c) { return Value(L->gatherArrayFloat(c.text(0))); }},
        {"peek:", "peek", H::Node, "l", C::Nothing, [](Call& c) { return N->peek(c.list(0)); }},
        {"pullDict:", "pullDict", H::Node, "t", C::Nothing, [](Call& c) { return N->pullDict(c.text(0)); }},
        {"pullArray:key:", "pullArray", H::Node, "lt", C::Nothing,
         [](Call& c) { return N->pullArray(c.list(0), c.text(1)); }},
        {"pullTxt:gap:", "pullTxt", H::Node, "lt", C::Nothing,
         [](Call& c) { return Value(N->pullTxt(c.list(0), c.text(1))); }},
        {"pullIt:gap:", "pullIt", H::Node, "nt", C::FirstArgument,
         [](Call& c) {
             N->pullIt(c.node(0), c.text(1));
             return Value();
         }},

        // ---- Purge, remove, clean, clone -------------------------------------
        {"mutablePurge", "mutablePurge", H::Node, "", C::Receiver,
         [](Call& c) {
             N->mutablePurge();
             return Value();
         }},
        {"mutablePurge:", "mutablePurge", H::Node, "t", C::Receiver,
         [](Call& c) {
             N->mutablePurge(c.text(0));
             return Value();
         }},
        {"mutablePurgeArray:key:", "mutablePurgeArray", H::Node, "lt", C::FirstArgument,
         [](Call& c) {
             N->mutablePurgeArray(c.list(0), c.text(1));
             return Value();
         }},
        {"removeKey:", "removeKey", H::Node, "t", C::Nothing, [](Call& c) { return Value(N->removeKey(c.text(0))); }},
        {"removeArray:key:", "removeArray", H::Node, "lt", C::Nothing,
         [](Call& c) { return Value(N->removeArray(c.list(0), c.text(1))); }},
        {"clean:", "clean", H::Node, "t", C::Nothing, [](Call& c) { return Value(N->clean(c.text(0))); }},
        {"cleanArray:txt:", "cleanArray", H::Node, "lt", C::Nothing,
         [](Call& c) { return Value(N->cleanArray(c.list(0), c.text(1))); }},
        {"ok:txt:", "ok", H::Node, "nt", C::Nothing, [](Call& c) { return Value(N->ok(c.node(0), c.text(1))); }},
        {"deepCopyDictionary", "deepCopyDictionary", H::Node, "", C::Nothing,
         [](Call& c) { return Value(N->deepCopyDictionary()); }},
        {"deepCopyArray:", "deepCopyArray", H::Node, "l", C::Nothing,
         [](Call& c) { return Value(N->deepCopyArray(c.list(0))); }},

        // ---- Record lists: find, count, remove -------------------------------
        {"containsObj:val:", "containsObj", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->containsObj(c.text(0), c.text(1))); }},
        {"findObj:val:", "findObj", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->findObj(c.text(0), c.text(1))); }},
        {"findObjContains:val:", "findObjContains", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->findObjContains(c.text(0), c.text(1))); }},
        {"findIdx:val:", "findIdx", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->findIdx(c.text(0), c.text(1))); }},
        {"removeObj:val:", "removeObj", H::List, "tt", C::Receiver,
         [](Call& c) {
             L->removeObj(c.text(0), c.text(1));
             return Value();
         }},
        {"removeObj:val:exceptKey:exceptVal:", "removeObj", H::List, "tttt", C::Receiver,
         [](Call& c) {
             L->removeObj(c.text(0), c.text(1), c.text(2), c.text(3));
             return Value();
         }},
        {"countItem:", "countItem", H::List, "t", C::Nothing, [](Call& c) { return Value(L->countItem(c.text(0))); }},
        {"countItem:val:", "countItem", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->countItem(c.text(0), c.text(1))); }},
        {"copyAll:", "copyAll", H::List, "l", C::Receiver,
         [](Call& c) {
             L->copyAll(c.list(0));
             return Value();
         }},
        {"toDictionary:", "toDictionary", H::List, "t", C::Nothing,
         [](Call& c) { return Value(L->toDictionary(c.text(0))); }},
        {"splitString:by:", "splitString", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->splitString(c.text(0), c.text(1))); }},
        {"getDate", "getDate", H::List, "", C::Nothing, [](Call& c) { return Value(L->getDate()); }},
        {"sortTemp:ascend:", "sortTemp", H::List, "tb", C::Nothing,
         [](Call& c) { return Value(L->sortTemp(c.text(0), c.flag(1))); }},
        {"sortTextTemp:", "sortTextTemp", H::List, "b", C::Nothing,
         [](Call& c) { return Value(L->sortTextTemp(c.flag(0))); }},

        // ---- Record lists: join, find, sort ----------------------------------
        {"dataExist:data:", "dataExist", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->dataExist(c.text(0), c.text(1))); }},
        {"findData:data:", "findData", H::List, "tt", C::Nothing,
         [](Call& c) { return Value(L->findData(c.text(0), c.text(1))); }},
        {"find:fields:", "find", H::List, "nl", C::Nothing,
         [](Call& c) { return Value(L->find(c.node(0), c.list(1))); }},
        {"removeFlds:containsText:", "removeFlds", H::List, "tt", C::Receiver,
         [](Call& c) {
             L->removeFlds(c.text(0), c.text(1));
             return Value();
         }},
        {"combineTextWith:field:", "combineTextWith", H::List, "vt", C::Nothing,
         [](Call& c) { return Value(L->combineTextWith(c.value(0), c.text(1))); }},
        {"combineTextWith:fields:", "combineTextWith", H::List, "vl", C::Nothing,
         [](Call& c) { return Value(L->combineTextWith(c.value(0), c.list(1))); }},
        {"combineTextWith:key:value:fields:", "combineTextWith", H::List, "vttl", C::Nothing,
         [](Call& c) { return Value(L->combineTextWith(c.value(0), c.text(1), c.text(2), c.list(3))); }},
        {"getAlreadyUsed:", "getAlreadyUsed", H::List, "t", C::Nothing,
         [](Call& c) { return Value(L->getAlreadyUsed(c.text(0))); }},
        {"sort:ascend:", "sort", H::List, "tb", C::Receiver,
         [](Call& c) {
             L->sort(c.text(0), c.flag(1));
             return Value();
         }},
        {"sortText:", "sortText", H::List, "b", C::Receiver, [](Call& c) { return Value(L->sortText(c.flag(0))); }},
        {"sortArray:", "sortArray", H::List, "t", C::Nothing, [](Call& c) { return Value(L->sortArray(c.text(0))); }},
        {"findIdx:field:ascend:", "findIdx", H::List, "vtb", C::Nothing,
         [](Call& c) { return Value(L->findIdx(c.value(0), c.text(1), c.flag(2))); }},
        {"findText:ascend:", "findText", H::List, "tb", C::Nothing,
         [](Call& c) { return Value(L->findText(c.text(0), c.flag(1))); }},

        // ---- Booking samples (no input read) ---------------------------------
        {"bookData", "bookData", H::None, "", C::Nothing, [](Call&) { return Value(List::bookData()); }},
        {"defaultDict:", "defaultDict", H::None, "t", C::Nothing,
         [](Call& c) { return Value(List::defaultDict(c.text(0))); }},
        {"myDate1", "myDate1", H::None, "", C::Nothing, [](Call&) { return Value(List::myDate1()); }},
        {"myDeparture", "myDeparture", H::None, "", C::Nothing, [](Call&) { return Value(List::myDeparture()); }},
        {"myBellingham", "myBellingham", H::None, "", C::Nothing, [](Call&) { return Value(List::myBellingham()); }},
        {"mySeaTac", "mySeaTac", H::None, "", C::Nothing, [](Call&) { return Value(List::mySeaTac()); }},
    };
    return rows;
}

#undef N
#undef L

} // namespace

std::span<const Operation> operations() {
    return table();
}

bool convertArgument(char param, const std::string& text, Value& out, std::string& error) {
    switch (param) {
    case 't':
        out = Value(text);
        return true;
    case 'b':
        if (text == "true" || text == "false") {
            out = Value(text == "true");
            return true;
        }
        error = "expected true or false, got '" + text + "'";
        return false;
    case 'v': {
        // JSON when it reads as JSON, else the text itself.
        Value value = json::parse(text);
        out = value.isAbsent() ? Value(text) : std::move(value);
        return true;
    }
    case 'l':
    case 'n': {
        auto result = json::read(text);
        if (!result) {
            error = "argument '" + text + "' is not JSON: " + result.error->describe();
            return false;
        }
        if (param == 'l' ? !result.value.isList() : !result.value.isNode()) {
            error = "argument '" + text + "' is not a JSON " + (param == 'l' ? "array" : "object");
            return false;
        }
        out = std::move(result.value);
        return true;
    }
    }
    error = "unknown parameter kind";
    return false;
}

} // namespace morvane::tree
