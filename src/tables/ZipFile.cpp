#include "tables/ZipFile.h"

#include <zip.h>

#include <array>

#include "platform/base/Failure.h"

namespace pollarix::tables {

namespace {

// A sheet of a million equal rows unpacks to some 150 times its size. The format allows for 1032.
constexpr std::int64_t MostBytesForOne = 500;
constexpr std::int64_t BytesBelowSuspicion = 16 << 20;

} // namespace

struct ZipFile::State {
    zip_t* archive = nullptr;
    ~State() {
        if (archive)
            zip_discard(archive);
    }
};

ZipFile::ZipFile(const QString& path) : path_(path), state_(std::make_unique<State>()) {
    int error = 0;
    state_->archive = zip_open(path.toUtf8().constData(), ZIP_RDONLY, &error);
    if (!state_->archive) {
        zip_error_t words;
        zip_error_init_with_code(&words, error);
        const QString why = QString::fromUtf8(zip_error_strerror(&words));
        zip_error_fini(&words);
        Refuse("is damaged or no workbook (" + why + ')');
    }
}

ZipFile::~ZipFile() = default;

void ZipFile::Refuse(const QString& why) const {
    throw Failure(failure::InvalidArgument, path_ + ": " + why);
}

bool ZipFile::Has(const QString& part) const {
    return zip_name_locate(state_->archive, part.toUtf8().constData(), ZIP_FL_NOCASE) >= 0;
}

void ZipFile::Read(const QString& part, std::int64_t most,
                   const std::function<bool(QByteArrayView, double)>& take) const {
    const zip_int64_t index =
        zip_name_locate(state_->archive, part.toUtf8().constData(), ZIP_FL_NOCASE);
    if (index < 0)
        Refuse("is no workbook: it has no part " + part);
    const auto place = static_cast<zip_uint64_t>(index);
    zip_stat_t stat;
    if (zip_stat_index(state_->archive, place, 0, &stat) != 0)
        Refuse("is damaged: " + QString::fromUtf8(zip_strerror(state_->archive)));
    struct Closed {
        zip_file_t* file;
        ~Closed() {
            if (file)
                zip_fclose(file);
        }
    } const opened{zip_fopen_index(state_->archive, place, 0)};
    if (!opened.file)
        Refuse("can't be unpacked: " + QString::fromUtf8(zip_strerror(state_->archive)));
    std::array<char, 1 << 16> block;
    std::int64_t done = 0;
    for (;;) {
        const zip_int64_t count = zip_fread(opened.file, block.data(), block.size());
        if (count < 0)
            Refuse("is damaged: " + QString::fromUtf8(zip_file_strerror(opened.file)));
        if (count == 0)
            return;
        done += count;
        if (done > most || (done > BytesBelowSuspicion &&
                            static_cast<double>(done) > static_cast<double>(MostBytesForOne) *
                                                            static_cast<double>(stat.comp_size)))
            Refuse(QString("its part %1 unpacks to far more than a table takes. Nothing of it was "
                           "read")
                       .arg(part));
        // What the file says of a part's size is not trusted but for this.
        const double share =
            stat.size > 0
                ? std::min(1.0, static_cast<double>(done) / static_cast<double>(stat.size))
                : 1.0;
        if (!take(QByteArrayView(block.data(), count), share))
            return;
    }
}

} // namespace pollarix::tables
