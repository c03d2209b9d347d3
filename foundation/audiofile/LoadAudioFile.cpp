// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/Translate.h"

namespace
{
using Reader = void (*)(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress);

MString ExtensionOf(const MString& path)
{
    for (int i = path.Length() - 1; i >= 0 && path[i] != u'/'; --i)
        if (path[i] == u'.')
            return path.SubString(i + 1, path.Length());
    return {};
}

// Null for an extension that says nothing.
Reader ReaderOf(const MString& extension)
{
    if (extension.EqualsNoCase("mp3"))
        return LoadMpeg;
    if (extension.EqualsNoCase("flac"))
        return LoadFlac;
    if (extension.EqualsNoCase("wav"))
        return LoadWave;
    if (extension.Length() >= 3 && extension.SubString(0, 3).EqualsNoCase("aif"))
        return LoadAiff;
    if (extension.EqualsNoCase("qaf"))
        return LoadQaf;
    return nullptr;
}

void LoadByTrial(AudioSampleBuffer& buffer, MStream& stream, const MString& path,
                 const LoadProgress& progress)
{
    bool cancelled = false;
    LoadProgress watched;
    if (progress.callback)
        watched.callback = [&](double fraction)
        {
            cancelled = !progress.callback(fraction);
            return !cancelled;
        };
    for (const Reader reader : { &LoadWave, &LoadAiff, &LoadQaf, &LoadFlac, &LoadMpeg })
        try
        {
            stream.Seek(0, MStream::Begin);
            reader(buffer, stream, watched);
            return;
        }
        catch (const MException&)
        {
            if (cancelled)
                throw;
        }
    ThrowInvalidContents(Format(Translate("Unknown audio format {0}."), path));
}
}   // namespace

void LoadAudioFile(AudioSampleBuffer& buffer, const MString& path, const LoadProgress& progress)
{
    MStdFileStream stream(path, MStdFileStream::ReadAccess);
    if (const Reader reader = ReaderOf(ExtensionOf(path)))
        reader(buffer, stream, progress);
    else
        LoadByTrial(buffer, stream, path, progress);
    if (buffer.frames < 1)
        ThrowInvalidContents("Empty audio file.");
}
