#pragma once

#include <memory>

#include <zentara/export.h>

/// Writes PCM audio to a RIFF/WAVE file: set the format, open(), write() any number of times, close().
/// Begins with 2 channels, 48000 samples a second and 16 bits a sample. The destructor closes. Separate.
///
/// Operations return 0 "no error", 1 "file already open", 2 "cannot open file", 3 "cannot write to file",
/// 4 "cannot seek file" or 5 "cannot close file".
class ZENTARA_API WaveWriter {
public:
    WaveWriter();
    ~WaveWriter();
    WaveWriter(const WaveWriter&) = delete;
    WaveWriter& operator=(const WaveWriter&) = delete;

    /// Creates or replaces the file (path in UTF-8) and writes its header: 0, 1, 2 or 3. After 3 the file is
    /// open. The count of data bytes is not reset: a writer that is opened again goes on from where it was.
    int open(const char* path);

    /// Appends `size` bytes of little-endian samples, channels interleaved: 0, also when no file is open,
    /// or 3. A negative size, null data and more than the format's 4 GiB are refused with 3. The samples may be kept
    /// back until close(), which then tells whether they could be written.
    int write(const void* data, int size);

    /// Writes what is still buffered, then the final sizes into the header, and closes: 0, also when no file is open,
    /// 3 when samples that write() took did not get into the file, as on a full disk, 4 when the header cannot be
    /// rewritten, or 5. The file is closed in any case; the first error is returned. After 3 the header counts the
    /// samples that are there.
    int close();

    bool isOpen() const;

    // The format counts when the file is opened, and again when it is closed: leave it alone in between.

    int getNumChannels() const;
    /// 1 to 65535.
    void setNumChannels(int channels);
    int getSamplingRate() const;
    /// In samples a second.
    void setSamplingRate(int rate);
    int getBitsPerChannel() const;
    /// 1 to 65535; a sample takes (bits + 7) / 8 bytes.
    void setBitsPerChannel(int bits);

    /// The text of a result code; "unknown error" for any other number. It lives for ever.
    static const char* errorString(int code);

private:
    struct Impl;

    std::unique_ptr<Impl> impl;
};
