#include "base/Json.h"

#include <cmath>
#include <limits>
#include <set>

namespace tarnovel {

namespace {

constexpr qsizetype largestDocument = 64'000'000;
constexpr int deepestLevel = 64;

/// A JSON pointer escapes the two characters that have a meaning in it.
std::string pointerToken(const std::string &key)
{
    std::string token;
    for (const char character : key) {
        if (character == '~') {
            token += "~0";
        } else if (character == '/') {
            token += "~1";
        } else {
            token += character;
        }
    }
    return token;
}

/// JSON cannot say that a number is not one: it would come back as null, and the document could not be read
/// again.
void requireFinite(const Json &value, const std::string &path)
{
    if (value.is_number_float() && !std::isfinite(value.get<double>())) {
        throw JsonError(path, "not a finite number");
    }
    if (value.is_object()) {
        for (const auto &member : value.items()) {
            requireFinite(member.value(), path + '/' + pointerToken(member.key()));
        }
    } else if (value.is_array()) {
        for (size_t i = 0; i < value.size(); ++i) {
            requireFinite(value[i], path + '/' + std::to_string(i));
        }
    }
}

} // namespace

Json parseJson(const QByteArray &bytes)
{
    if (bytes.size() > largestDocument) {
        throw JsonError({}, "larger than 64 MB");
    }
    std::vector<std::set<std::string>> keys;
    const auto check = [&keys](int depth, Json::parse_event_t event, Json &parsed) {
        if (depth > deepestLevel) {
            throw JsonError({}, "more than 64 levels deep");
        }
        if (event == Json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == Json::parse_event_t::key) {
            const auto &key = parsed.get_ref<const std::string &>();
            if (!keys.back().insert(key).second) {
                throw JsonError({}, "the key \"" + key + "\" stands twice in one object");
            }
        }
        return true;
    };
    try {
        return Json::parse(bytes.begin(), bytes.end(), check);
    } catch (const Json::exception &error) {
        // The library's own mark in brackets says nothing to a reader.
        const std::string what = error.what();
        throw JsonError({}, what.substr(what.find("] ") == std::string::npos ? 0 : what.find("] ") + 2));
    }
}

QByteArray writeJson(const Json &value)
{
    requireFinite(value, {});
    return QByteArray::fromStdString(value.dump());
}

Json jsonText(const QString &text)
{
    return text.toStdString();
}

double JsonReader::number() const
{
    if (!m_value.is_number()) {
        fail("expected a number");
    }
    return m_value.get<double>();
}

int JsonReader::integer() const
{
    const double value = number();
    if (value != std::trunc(value) || value < std::numeric_limits<int>::min() ||
        value > std::numeric_limits<int>::max()) {
        fail("expected a whole number");
    }
    return static_cast<int>(value);
}

bool JsonReader::boolean() const
{
    if (!m_value.is_boolean()) {
        fail("expected true or false");
    }
    return m_value.get<bool>();
}

QString JsonReader::text() const
{
    if (!m_value.is_string()) {
        fail("expected a string");
    }
    return QString::fromStdString(m_value.get_ref<const std::string &>());
}

std::vector<JsonReader> JsonReader::elements() const
{
    if (!m_value.is_array()) {
        fail("expected an array");
    }
    std::vector<JsonReader> result;
    result.reserve(m_value.size());
    for (const Json &element : m_value) {
        result.emplace_back(element, m_path + '/' + std::to_string(result.size()));
    }
    return result;
}

JsonReader JsonReader::member(const char *key) const
{
    if (!m_value.is_object()) {
        fail("expected an object");
    }
    const auto found = m_value.find(key);
    JsonReader reader(found == m_value.end() ? m_value : *found, m_path + '/' + pointerToken(key));
    if (found == m_value.end()) {
        reader.fail("missing");
    }
    return reader;
}

std::optional<JsonReader> JsonReader::optionalMember(const char *key) const
{
    if (!m_value.is_object()) {
        fail("expected an object");
    }
    const auto found = m_value.find(key);
    if (found == m_value.end() || found->is_null()) {
        return std::nullopt;
    }
    return JsonReader(*found, m_path + '/' + pointerToken(key));
}

void JsonReader::fail(const std::string &reason) const
{
    throw JsonError(m_path, reason);
}

std::optional<double> JsonReader::optionalNumber(const char *key) const
{
    const auto found = optionalMember(key);
    return found ? std::optional(found->number()) : std::nullopt;
}

std::optional<QString> JsonReader::optionalText(const char *key) const
{
    const auto found = optionalMember(key);
    return found ? std::optional(found->text()) : std::nullopt;
}

} // namespace tarnovel
