#include "cli/BatchRun.h"

#include <utility>

#include <QDir>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileTrouble.h"
#include "cli/FailureCode.h"
#include "language/AppLanguage.h"
#include "pipeline/CameraTexts.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

QString extensionOf(const BatchOutput &output)
{
    return output.sizes.first().options.png ? u"png"_s : u"jpg"_s;
}

struct MadeByAnother {};

/// Whether a name leads to anything, also to a link into nowhere.
bool isTaken(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

} // namespace

BatchRun::BatchRun(BatchOutput output, const PhotoSource &source, PhotoMaker &maker)
    : m_output(std::move(output)),
      m_source(source),
      m_maker(maker),
      m_names(m_output.pattern, extensionOf(m_output)),
      m_progress(m_output.ours, m_output.quiet || m_output.dryRun)
{
}

void BatchRun::take(const PhotoJob &job, const QString &name, const QString &templateId, Whose whose)
{
    Entry entry;
    entry.job = job;
    FieldValues values;
    values.name = name;
    values.number = job.index + 1;
    values.count = m_output.count;
    values.templateId = templateId;
    for (const WantedSize &size : m_output.sizes) {
        values.size = size.name;
        entry.results.append({size, values});
    }
    try {
        setFacts(job, entry.results);
    } catch (const OperationCancelled &) {
        finish(); // what was begun before may be there already
        throw;
    }
    setAttempts(entry);
    if (whose == Whose::Others) {
        return;
    }
    if (m_output.dryRun) {
        preview(entry);
        return;
    }
    m_progress.show(m_done, QFileInfo(job.photo).fileName());
    for (Result &result : entry.results) {
        result.skipped = m_output.skipExisting && exists(result);
        if (!result.skipped) {
            entry.job.sizes.append(result.size);
        }
    }
    entry.made = !entry.job.sizes.isEmpty();
    if (entry.made) {
        try {
            m_maker.begin(entry.job);
        } catch (const OperationCancelled &) {
            finish(); // what was begun before may be there already
            throw;
        }
        ++m_making;
    }
    m_entries.push_back(std::move(entry));
    endReady();
}

/// Names that say how a photo was taken or how large its results are need its file to be looked into.
void BatchRun::setFacts(const PhotoJob &job, QList<Result> &results) const
{
    const bool pixels = m_output.pattern.uses(FieldPattern::Field::Width) ||
                        m_output.pattern.uses(FieldPattern::Field::Height);
    try {
        if (m_output.pattern.usesCamera()) {
            const CaptureMetadata captured = m_source.captured(job);
            for (Result &result : results) {
                setCameraFields(result.values, captured);
            }
        }
        if (pixels) {
            const PhotoItem shape = m_source.shape(job);
            for (Result &result : results) {
                const QSize canvas = outputCanvas(shape, result.size.options);
                result.values.width = canvas.width();
                result.values.height = canvas.height();
            }
        }
    } catch (const PipelineFailure &) {
        return; // its making will say what is wrong
    }
}

void BatchRun::setAttempts(Entry &entry)
{
    const QList<int> before = m_attempts.value(entry.job.photo);
    QList<int> attempts;
    for (Result &result : entry.results) {
        result.attempt = before.isEmpty() ? m_names.attempt(result.values) : before.at(attempts.size());
        attempts.append(result.attempt);
    }
    if (m_output.keepsNames) {
        m_attempts.insert(entry.job.photo, attempts);
    }
}

QString BatchRun::path(const Result &result, int attempt) const
{
    return m_output.folder + u'/' + m_names.name(result.values, attempt);
}

bool BatchRun::exists(const Result &result) const
{
    return isTaken(path(result, result.attempt));
}

void BatchRun::preview(const Entry &entry)
{
    if (const auto trouble = m_source.trouble(entry.job)) {
        fail(entry.job, nullptr, errorDescription(*trouble), failureCode(*trouble));
        return;
    }
    for (const Result &result : entry.results) {
        int attempt = result.attempt;
        const bool skips = m_output.skipExisting && exists(result);
        while (!skips &&
               (isTaken(path(result, attempt)) || m_previewed.contains(qHash(path(result, attempt))))) {
            ++attempt;
        }
        m_previewed.insert(qHash(path(result, attempt)));
        if (m_output.json) {
            Json object = line(entry, result, path(result, attempt));
            object[skips ? "skipped" : "dryRun"] = true;
            print(object);
        } else if (!skips) {
            m_deaf = !Console::print(Console::escaped(entry.job.photo) + u": "_s +
                                     Console::escaped(path(result, attempt))) ||
                     m_deaf;
        }
    }
}

void BatchRun::endReady()
{
    // Those that are left alone wait for a photo before them, but not by the hundred thousand.
    constexpr size_t mostWaiting = 1000;
    while (!m_entries.empty() && !m_deaf &&
           (!m_entries.front().made || m_making >= m_maker.most() || m_entries.size() > mostWaiting)) {
        const Entry entry = std::move(m_entries.front());
        m_entries.pop_front();
        end(entry);
    }
}

void BatchRun::finish()
{
    while (!m_entries.empty() && !m_deaf) {
        const Entry entry = std::move(m_entries.front());
        m_entries.pop_front();
        end(entry);
    }
}

void BatchRun::end(const Entry &entry)
{
    MadePhoto made;
    if (entry.made) {
        --m_making;
        made = m_maker.next();
    }
    for (const QString &warning : made.warnings) {
        if (m_warned.insert(qHash(warning)).second) {
            m_progress.clear();
            Console::complain(warning);
        }
    }
    const bool oneFailure = made.sizes.size() == 1 && made.sizes.first().path.isEmpty();
    for (qsizetype next = 0; const Result &result : entry.results) {
        if (result.skipped) {
            tellSkipped(entry, result);
        } else if (oneFailure) {
            if (next++ == 0) {
                const MadeSize &why = made.sizes.first();
                fail(entry.job, entry.job.sizes.size() == 1 ? &result : nullptr, why.message, why.code);
            }
        } else {
            publish(entry, result, made.sizes.at(next++));
        }
    }
    ++m_done;
}

void BatchRun::tellSkipped(const Entry &entry, const Result &result)
{
    if (m_output.json) {
        Json object = line(entry, result, path(result, result.attempt));
        object["skipped"] = true;
        print(object);
    }
}

void BatchRun::publish(const Entry &entry, const Result &result, const MadeSize &made)
{
    if (made.path.isEmpty()) {
        fail(entry.job, &result, made.message, made.code);
        return;
    }
    try {
        const QString published = publishFile(made.path, m_output.folder, [this, &result](int attempt) {
            // The next name may be another photo's. That one has appeared meanwhile says that another run
            // has made this photo.
            if (m_output.skipExisting && attempt > 0) {
                throw MadeByAnother();
            }
            return m_names.name(result.values, result.attempt + attempt);
        });
        if (m_output.json) {
            Json object = line(entry, result, published);
            object.update(made.facts);
            print(object);
        }
    } catch (const MadeByAnother &) {
        tellSkipped(entry, result);
    } catch (const FileError &error) {
        const bool elsewhere = error.path().startsWith(QDir::tempPath() + u"/tarnovel-run-"_s);
        const QString where =
            elsewhere
                ? localized({"临时文件夹 ", "temporary folder ", "dossier temporaire "}) + QDir::tempPath()
                : m_output.folder;
        fail(entry.job, &result, where + u": "_s + errorDescription(error), failureCode(error));
    }
}

Json BatchRun::line(const Entry &entry, const Result &result, const QString &path) const
{
    Json object;
    object["photo"] = jsonText(entry.job.photo);
    object["file"] = jsonText(path);
    if (m_output.sizes.size() > 1) {
        object["size"] = jsonText(result.size.name);
    }
    return object;
}

void BatchRun::print(const Json &line)
{
    m_deaf = !Console::print(QString::fromUtf8(writeJson(line))) || m_deaf;
}

void BatchRun::fail(const PhotoJob &job, const Result *result, const QString &message, const QString &code)
{
    m_failed = true;
    if (m_output.json) {
        Json object{{"photo", jsonText(job.photo)}};
        if (result && m_output.sizes.size() > 1) {
            object["size"] = jsonText(result->size.name);
        }
        object["error"] = jsonText(message);
        object["code"] = jsonText(code);
        print(object);
    }
    m_progress.clear();
    Console::complain(job.photo, message);
}

void BatchRun::reportFailure(const QString &photo, const QString &message, const QString &code)
{
    PhotoJob job;
    job.photo = photo;
    fail(job, nullptr, message, code);
}

} // namespace tarnovel::cli
