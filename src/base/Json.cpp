#include "base/Json.h"

#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unordered_set>
#include <utility>

#include <QFile>

#include "base/FileError.h"

namespace tarnovel {

namespace {

constexpr qsizetype largestDocument = 64'000'000;
constexpr size_t deepestLevel = 64;
constexpr size_t mostMembers = 1'000;
constexpr int mostValues = 1'000'000;

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

/// Builds a document as the parser meets it. The library's own builder looks each key up among those before it.
class DocumentBuilder : public nlohmann::json_sax<Json> {
public:
    Json root;
    std::optional<JsonError> fault;

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, const string_t &) override { return add(value); }
    bool string(string_t &value) override { return add(std::move(value)); }
    bool binary(binary_t &) override { return fail("binary data"); }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_array() override { return close(); }

    bool key(string_t &name) override
    {
        std::unordered_set<std::string> &known = m_open.back().keys;
        if (known.size() == mostMembers) {
            return fail("more than 1000 members in one object");
        }
        if (!known.insert(name).second) {
            return fail("the key \"" + name + "\" stands twice in one object");
        }
        m_key = std::move(name);
        return true;
    }

    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &error) override
    {
        // The library's own mark in brackets says nothing to a reader.
        const std::string what = error.what();
        const size_t mark = what.find("] ");
        return fail(what.substr(mark == std::string::npos ? 0 : mark + 2));
    }

private:
    struct Open {
        Json *value;
        std::unordered_set<std::string> keys = {};
    };

    bool fail(const std::string &reason)
    {
        fault.emplace(std::string(), reason);
        return false;
    }

    /// Null once there are too many values.
    Json *place(Json value)
    {
        if (++m_values > mostValues) {
            fail("more than a million values");
            return nullptr;
        }
        if (m_open.empty()) {
            root = std::move(value);
            return &root;
        }
        Json &parent = *m_open.back().value;
        if (parent.is_array()) {
            parent.push_back(std::move(value));
            return &parent.back();
        }
        // Past the object's own way in, which would search for the key.
        auto &members = static_cast<Json::object_t::Container &>(parent.get_ref<Json::object_t &>());
        return &members.emplace_back(std::move(m_key), std::move(value)).second;
    }

    bool add(Json value) { return place(std::move(value)) != nullptr; }

    bool open(Json container)
    {
        if (m_open.size() == deepestLevel) {
            return fail("more than 64 levels deep");
        }
        Json *const placed = place(std::move(container));
        if (placed) {
            m_open.push_back({placed});
        }
        return placed != nullptr;
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    std::vector<Open> m_open;
    std::string m_key;
    int m_values = 0;
};

JsonError tooLong()
{
    return {{}, "larger than 64 MB"};
}

} // namespace

PartialJson parseJsonUpToFault(const QByteArray &bytes)
{
    if (bytes.size() > largestDocument) {
        return {{}, tooLong()};
    }
    DocumentBuilder builder;
    Json::sax_parse(bytes.begin(), bytes.end(), &builder);
    return {std::move(builder.root), builder.fault};
}

Json parseJson(const QByteArray &bytes)
{
    PartialJson parsed = parseJsonUpToFault(bytes);
    if (parsed.fault) {
        throw *parsed.fault;
    }
    return std::move(parsed.value);
}

QByteArray readJsonFile(const QString &path)
{
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status = {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
        throw FileError(path, errno, FileAccess::Read);
    }
    QFile file;
    file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    if (!S_ISREG(status.st_mode)) {
        throw FileError(path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL, FileAccess::Read);
    }
    if (status.st_size > largestDocument) {
        throw tooLong();
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) {
        throw FileError(path, EIO, FileAccess::Read);
    }
    return bytes;
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

QString JsonReader::text(qsizetype longest) const
{
    QString whole = text();
    // Half of a surrogate pair is no character.
    const bool split = whole.size() > longest && whole.at(longest - 1).isHighSurrogate();
    whole.truncate(split ? longest - 1 : longest);
    return whole;
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
