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

/// Parses a whole document by the strict grammar, in time that grows with its length alone. Duplicate keys,
/// more than 64 MB, 64 levels, 1,000 members in an object or a million values are refused with a JsonError.
Json parseJson(const QByteArray &bytes);

/// What could be read of a document before its first fault, and that fault; nothing where there was none.
struct PartialJson {
    Json value;
    std::optional<JsonError> fault;
};
PartialJson parseJsonUpToFault(const QByteArray &bytes);

/// The bytes of a document's file. Its size is looked at before it is read: a FileError for a file that cannot
/// be read or is none, a JsonError for one of more than 64 MB.
QByteArray readJsonFile(const QString &path);

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
    /// A text that nobody needs to be longer: what is beyond `longest` characters is left out.
    QString text(qsizetype longest) const;
    /// The elements of an array.
    std::vector<JsonReader> elements() const;
    /// The member of an object; a JsonError when the object lacks it.
    JsonReader member(const char *key) const;
    /// None when the object lacks the member or holds null there.
    std::optional<JsonReader> optionalMember(const char *key) const;
    const Json &value() const { return m_value; }
    [[noreturn]] void fail(const std::string &reason) const;

    std::optional<double> optionalNumber(const char *key) const;
    std::optional<QString> optionalText(const char *key) const;

private:
    const Json &m_value;
    std::string m_path;
};

} // namespace tarnovel
