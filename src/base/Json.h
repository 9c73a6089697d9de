#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <QByteArray>
#include <QString>
#include <nlohmann/json.hpp>

namespace tarnovel {

/// JSON whose objects keep the order in which their members were added.
using Json = nlohmann::ordered_json;

/// A document, or a part of it, that cannot be read. `path` is a JSON pointer such as
/// "/photos/3/settings/color/r".
class JsonError : public std::runtime_error {
public:
    JsonError(const std::string &path, const std::string &reason)
        : std::runtime_error((path.empty() ? "/" : path) + ": " + reason), m_path(path), m_reason(reason)
    {
    }
    const std::string &path() const { return m_path; }
    const std::string &reason() const { return m_reason; }

private:
    std::string m_path;
    std::string m_reason;
};

/// Parses a whole document by the strict grammar. Duplicate keys, more than 64 MB and more than 64 levels are
/// refused with a JsonError.
Json parseJson(const QByteArray &bytes);

/// The document without white space. Numbers are written so that reading them gives the same bits.
QByteArray writeJson(const Json &value);

Json jsonText(const QString &text);

/// A value of a document that knows where it stands, so that every complaint names the place.
class JsonReader {
public:
    explicit JsonReader(const Json &value, std::string path = {}) : m_value(value), m_path(std::move(path)) {}

    double number() const;
    int integer() const;
    bool boolean() const;
    QString text() const;
    /// The elements of an array.
    std::vector<JsonReader> elements() const;
    /// The member of an object; a JsonError when the object lacks it.
    JsonReader member(const char *key) const;
    /// None when the object lacks the member or holds null there.
    std::optional<JsonReader> optionalMember(const char *key) const;
    [[noreturn]] void fail(const std::string &reason) const;

    std::optional<double> optionalNumber(const char *key) const;
    std::optional<QString> optionalText(const char *key) const;

private:
    const Json &m_value;
    std::string m_path;
};

} // namespace tarnovel
