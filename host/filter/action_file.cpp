#include "host/filter/action_file.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "platform/mac_roman.h"

namespace {

// Keeps the parameters in order: they are played in it.
using Json = nlohmann::ordered_json;

// In bytes. Parsing takes time quadratic in the number of members, which would be seconds for larger files.
constexpr size_t kLargestFile = 1 << 16;
constexpr size_t kCodeLength = 4;
constexpr int kIndent = 2;
constexpr char kFloatName[] = "float";

std::string TextOfCode(OSType code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(code >> shift);
    }
    return MacRomanToUTF8(text);
}

bool CodeOf(const Json &json, OSType *code) {
    if (!json.is_string()) {
        return false;
    }
    const std::string text = UTF8ToMacRoman(json.get_ref<const std::string &>());
    *code = 0;
    for (const char character : text) {
        *code = *code << 8 | static_cast<uint8_t>(character);
    }
    return text.size() == kCodeLength;
}

bool TakeFloat(const Json &value, ActionItem *item) {
    item->number = value.is_number() ? value.get<double>() : 0;
    return value.is_number();
}

bool TakeInteger(const Json &value, ActionItem *item) {
    // As a double, since the largest integers in JSON would wrap in any other type.
    const double number = value.is_number_integer() ? value.get<double>() : NAN;
    if (!(number >= INT32_MIN && number <= INT32_MAX)) {
        return false;
    }
    item->integer = std::bit_cast<uint32_t>(static_cast<int32_t>(number));
    return true;
}

bool TakeBoolean(const Json &value, ActionItem *item) {
    item->integer = value.is_boolean() && value.get<bool>();
    return value.is_boolean();
}

bool TakeText(const Json &value, ActionItem *item) {
    item->bytes = value.is_string() ? UTF8ToMacRoman(value.get<std::string>()) : "";
    return value.is_string();
}

bool TakeEnumerated(const Json &value, ActionItem *item) {
    return CodeOf(value, &item->integer);
}

struct Kind {
    OSType type;
    const char *name;
    const char *codeName;  // the member that holds the item's code; null for none
    bool (*take)(const Json &value, ActionItem *item);
};

constexpr Kind kKinds[] = {
    {typeFloat, kFloatName, nullptr, TakeFloat},    {typeUnitFloat, "unit float", "unit", TakeFloat},
    {typeInteger, "integer", nullptr, TakeInteger}, {typeBoolean, "boolean", nullptr, TakeBoolean},
    {typeText, "text", nullptr, TakeText},          {typeEnumerated, "enumerated", "of", TakeEnumerated},
};

const Kind *KindNamed(const Json &name) {
    const auto *found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                     [&](const Kind &kind) { return name == kind.name; });
    return found == std::end(kKinds) ? nullptr : found;
}

// The parameters that the filter takes, all floats; it silently ignores everything else.
struct Parameter {
    OSType key;
    const char *name;
    double min, max;
};
constexpr Parameter kParameters[] = {{kRadiusKey, "radius", kMinPlayedRadius, kMaxPlayedRadius}};

// Each of the functions below returns what is wrong, or an empty string.

std::string CheckMembers(const Json &object, std::initializer_list<std::string> names) {
    if (!object.is_object()) {
        return "is not an object in braces";
    }
    for (const std::string &name : names) {
        if (!object.contains(name)) {
            return "has no \"" + name + "\"";
        }
    }
    for (const auto &[name, value] : object.items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            return "has an unknown \"" + name + "\"";
        }
    }
    return "";
}

std::string CheckParameter(const ActionItem &item) {
    const auto *found = std::find_if(std::begin(kParameters), std::end(kParameters),
                                     [&](const Parameter &known) { return known.key == item.key; });
    if (found == std::end(kParameters)) {
        return "is not one that the filter knows";
    }
    if (item.type != typeFloat) {
        return std::string("must be of the type \"") + kFloatName + "\"";
    }
    // Also refuses NaN.
    if (!(item.number >= found->min && item.number <= found->max)) {
        char text[128];
        std::snprintf(text, sizeof text, "is a %s of %g, and --play takes those from %g to %g", found->name,
                      item.number, found->min, found->max);
        return text;
    }
    return "";
}

std::string OfParameter(const std::string &name, const std::string &wrong) {
    return "the parameter \"" + name + "\" " + wrong;
}

std::string TakeItem(const Json &json, ActionItem *item) {
    const Json *type = json.is_object() && json.contains("type") ? &json["type"] : nullptr;
    const Kind *kind = type == nullptr ? nullptr : KindNamed(*type);
    if (kind == nullptr) {
        return type == nullptr ? "has no \"type\"" : "has an unknown type";
    }
    std::string wrong = kind->codeName == nullptr ? CheckMembers(json, {"type", "value"})
                                                  : CheckMembers(json, {"type", kind->codeName, "value"});
    if (!wrong.empty()) {
        return wrong;
    }
    item->type = kind->type;
    if (!kind->take(json["value"], item) ||
        (kind->codeName != nullptr && !CodeOf(json[kind->codeName], &item->code))) {
        return std::string("has no value of the type \"") + kind->name + "\"";
    }
    return CheckParameter(*item);
}

std::string TakeAction(const Json &json, Action *action) {
    if (const std::string wrong = CheckMembers(json, {"event", "parameters"}); !wrong.empty()) {
        return "the action " + wrong;
    }
    if (!CodeOf(json["event"], &action->event) || action->event != kHybridMedianEvent) {
        return "the action is of another event than \"" + TextOfCode(kHybridMedianEvent) + "\"";
    }
    if (!json["parameters"].is_object()) {
        return "\"parameters\" is not an object in braces";
    }
    for (const auto &[name, value] : json["parameters"].items()) {
        ActionItem item;
        const bool known = CodeOf(name, &item.key);
        const std::string wrong = known ? TakeItem(value, &item) : "is no code of four characters";
        if (!wrong.empty()) {
            return OfParameter(name, wrong);
        }
        action->items.push_back(std::move(item));
    }
    return "";
}

// Finds repeated members, which the parser would accept.
struct MemberWatch {
    std::vector<std::vector<std::string>> open;
    std::optional<std::string> repeated;

    bool operator()(int, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::object_start) {
            open.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            open.pop_back();
        } else if (event == Json::parse_event_t::key) {
            auto &names = open.back();
            const auto name = parsed.get<std::string>();
            if (std::find(names.begin(), names.end(), name) != names.end()) {
                repeated = name;
            }
            names.push_back(name);
        }
        return true;
    }
};

std::string Parse(const std::string &text, Json *json) {
    const std::string invalid = "this is not valid JSON: ";
    MemberWatch watch;
    try {
        *json = Json::parse(text, std::ref(watch));
    } catch (const Json::parse_error &error) {
        // error.byte is the last byte read, counted from 1, or one past the end.
        if (error.byte > text.size()) {
            return invalid + "it ends too early";
        }
        const std::string sound = text.substr(0, error.byte - 1);
        const auto line = std::count(sound.begin(), sound.end(), '\n') + 1;
        return invalid + "there is a mistake in line " + std::to_string(line);
    } catch (const Json::exception &) {
        return invalid + "it holds a number that is too large";
    }
    return watch.repeated ? '"' + *watch.repeated + "\" is there twice in the same braces" : "";
}

bool ReadText(const std::string &file, std::string *text) {
    std::ifstream stream(file, std::ios::binary);
    char block[4096];
    while (text->size() <= kLargestFile && (stream.read(block, sizeof block) || stream.gcount() > 0)) {
        text->append(block, static_cast<size_t>(stream.gcount()));
    }
    return stream.eof() && text->size() <= kLargestFile;
}

}  // namespace

MaybeFailure ReadAction(const std::string &file, Action *action) {
    std::string text;
    if (!ReadText(file, &text)) {
        return FileFailure(file, text.size() > kLargestFile
                                     ? "this is larger than any action"
                                     : std::string("cannot be read: ") + std::strerror(errno));
    }
    Json json;
    if (const std::string wrong = Parse(text, &json); !wrong.empty()) {
        return FileFailure(file, wrong);
    }
    const std::string wrong = TakeAction(json, action);
    return wrong.empty() ? std::nullopt : MaybeFailure(FileFailure(file, wrong));
}

MaybeFailure WriteAction(const Action &action, const std::string &path, const std::string &file) {
    Json parameters = Json::object();
    for (const ActionItem &item : action.items) {
        const std::string key = TextOfCode(item.key);
        if (const std::string wrong = CheckParameter(item); !wrong.empty()) {
            return FileFailure(file, "nothing was written: " + OfParameter(key, wrong));
        }
        parameters[key] = {{"type", kFloatName}, {"value", item.number}};
    }
    const Json json = {{"event", TextOfCode(action.event)}, {"parameters", std::move(parameters)}};
    std::ofstream stream(path, std::ios::binary);
    stream << json.dump(kIndent) << '\n';
    stream.close();
    return stream ? std::nullopt : MaybeFailure(FileFailure(file, "cannot be written"));
}
