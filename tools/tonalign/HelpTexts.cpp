// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/HelpTexts.h"

#define FIT_OPTIONS                                                                                          \
    "FITTING\n"                                                                                              \
    "  --bands N               number of bands to fit, 1 to 10 (4)\n"                                        \
    "  --algorithm NAME        default: every place of every filter shape is tried;\n"                       \
    "                          optimized: the likeliest place of each shape (default)\n"                     \
    "  --low HZ, --high HZ     leave what lies below or above alone, 20 to 20000\n"                          \
    "  --never-amplify         cut only: the bands together raise no frequency by more than 0.05 dB\n"       \
    "  --no-pass-notch         only peaks and shelves\n"                                                     \
    "  --smooth PERCENT        smoothing of the spectra, 0 to 20 (5)\n"

#define SOUND_OPTIONS                                                                                        \
    "SOUND\n"                                                                                                \
    "  --mode NAME             normal: minimum phase; linear: linear phase, each section\n"                  \
    "                          forward and backward; fft: linear phase by spectra (linear)\n"                \
    "  --dry-wet PERCENT       share of the equalized sound, 0 to 100 (100)\n"                               \
    "  --gain DB               output gain, -24 to 24 (0)\n"                                                 \
    "  --saturation PERCENT    soft saturation, 0 to 100 (0)\n"                                              \
    "  --upsampling FACTOR     equalize at 1 to 4 times the sample rate (1)\n"                               \
    "  --upsampling-quality NAME\n"                                                                          \
    "                          high: linear phase, flat up to 0.45 of the rate; plain: quicker (high)\n"     \
    "  --agc                   keep the loudness of the input (ITU-R BS.1770)\n"                             \
    "  --channel-mode NAME     what is equalized: L+R, L, R, M, S, M+S, L+R- (right inverted), or\n"         \
    "                          7.1 for 3 to 8 channels, which are always equalized all alike\n"

#define OUTPUT_OPTIONS                                                                                       \
    "OUTPUT\n"                                                                                               \
    "  -o OUT                  the file to write; it appears only when all has succeeded\n"                  \
    "  --format NAME           wav, flac or aiff (from OUT's ending)\n"                                      \
    "  --bits NAME             16, 24 or 32f (as the input); integers are rounded, not dithered\n"           \
    "  --save-state FILE       also write the plug-in's state, as a host would keep it\n"                    \
    "  --save-preset FILE      also write a preset that the dialog of a host opens: .vstpreset for VST 3,\n" \
    "                          .fxp for VST 2\n"                                                             \
    "  --block FRAMES          frames in a processing block, 1 to 1048576 (512)\n"                           \
    "  --force                 replace plain files that exist\n"                                             \
    "  --json                  print one JSON object instead of text\n"                                      \
    "  --quiet                 print nothing but errors\n"

#define STATUS                                                                                               \
    "EXIT STATUS\n"                                                                                          \
    "  0 done; 1 the work failed, with one line on standard error; 2 wrong usage.\n"

namespace HelpTexts
{
const char* const Program =
    "NAME\n"
    "  tonalign - match the spectrum of one recording to another with a linear-phase equalizer\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign equalize TARGET --source SOURCE [-o OUT] [options]\n"
    "  tonalign separate TRACK --source MIX [-o OUT] [options]\n"
    "  tonalign render INPUT [--state STATE] [--band SPEC]... -o OUT [options]\n"
    "  tonalign analyse FILE -o NAME.TonalignComparison\n"
    "  tonalign show FILE [--json | --csv]\n"
    "  tonalign COMMAND --help\n"
    "\n"
    "DESCRIPTION\n"
    "  equalize  make TARGET sound like SOURCE: measure the long-term spectra of both, turn the\n"
    "            difference into equalizer bands, and run TARGET through them\n"
    "  separate  make room for MIX in TRACK: lower what both have in common\n"
    "  render    run a file through a saved state, or through bands typed by hand\n"
    "  analyse   save the spectrum of a recording, to be used as a SOURCE\n"
    "  show      print what a state, an analysis or a recording holds\n"
    "\n"
    "  Recordings are WAV, AIFF, FLAC, MP3 or QAF files with one to eight channels. The output is as\n"
    "  long as the input and in time with it.\n"
    "\n"
    "OPTIONS\n"
    "  -h, --help              this text, or that of a command\n"
    "  --version               the version\n"
    "\n"
    "EXAMPLES\n"
    "  tonalign equalize voice.wav --source reference.flac -o voice-matched.wav\n"
    "  tonalign render song.flac --band highpass:30:0:0.707 --band peak:250:-3:1 -o song-eq.flac\n"
    "\n" STATUS;

const char* const Equalize =
    "NAME\n"
    "  tonalign equalize - make TARGET sound like SOURCE\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign equalize TARGET --source SOURCE [-o OUT] [options]\n"
    "\n"
    "DESCRIPTION\n"
    "  Measures TARGET and SOURCE, fits bands to the difference of their spectra, prints the bands and\n"
    "  how much closer the spectrum came, and with -o writes TARGET through the bands. Only the balance\n"
    "  is matched, not the loudness. SOURCE is a recording or a saved analysis, whatever its name.\n"
    "  Without -o TARGET may be an analysis too.\n"
    "\n"
    "  --source SOURCE         what TARGET should sound like\n"
    "  --rate HZ               sample rate to work at when TARGET is an analysis (48000)\n"
    "\n" FIT_OPTIONS "\n" SOUND_OPTIONS "\n" OUTPUT_OPTIONS "\n" STATUS;

const char* const Separate =
    "NAME\n"
    "  tonalign separate - make room for MIX in TRACK\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign separate TRACK --source MIX [-o OUT] [options]\n"
    "\n"
    "DESCRIPTION\n"
    "  Measures TRACK and MIX and fits bands that lower TRACK where MIX is strong. MIX should be the mix\n"
    "  without TRACK. Consider --dry-wet to do it by halves.\n"
    "\n"
    "  --source MIX            the recording or analysis to make room for\n"
    "  --limit DB              below this level, relative to its peak, MIX counts as empty,\n"
    "                          -100 to 0 (-40)\n"
    "  --rate HZ               sample rate to work at when TRACK is an analysis (48000)\n"
    "\n" FIT_OPTIONS "\n" SOUND_OPTIONS "\n" OUTPUT_OPTIONS "\n" STATUS;

const char* const Render =
    "NAME\n"
    "  tonalign render - run a file through a saved state or typed bands\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign render INPUT [--state STATE] [--band SPEC]... -o OUT [options]\n"
    "\n"
    "DESCRIPTION\n"
    "  STATE is what --save-state writes and what a host keeps of the plug-in. Bands given with --band\n"
    "  take the place of the state's. With neither, no band is enabled and the file passes as it is.\n"
    "  The options under SOUND override the state.\n"
    "\n"
    "  --state STATE           a plug-in state\n"
    "  --band TYPE:FREQ:GAIN:Q[:ORDER]\n"
    "                          a band, up to 10 times. TYPE is peak, lowshelf, highshelf, lowpass,\n"
    "                          highpass, lowpass6, highpass6, bandpass or notch; FREQ is 20 to 20000 Hz,\n"
    "                          GAIN -24 to 24 dB (used by peak and shelves), Q 0.05 to 10, ORDER 0 to 9\n"
    "                          (0): a lowpass falls by 24 dB an octave, and by 24 more for each ORDER\n"
    "\n" SOUND_OPTIONS "\n" OUTPUT_OPTIONS "\n" STATUS;

const char* const Analyse =
    "NAME\n"
    "  tonalign analyse - save the spectrum of a recording\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign analyse FILE -o NAME.TonalignComparison [--force] [--json] [--quiet]\n"
    "\n"
    "DESCRIPTION\n"
    "  Writes the long-term spectrum of FILE, 1024 points from 20 Hz to 20 kHz, as an analysis that\n"
    "  equalize and separate take as a SOURCE and that the plug-in loads.\n"
    "\n"
    "  -o NAME                 the file to write\n"
    "  --force                 replace a plain file that exists\n"
    "  --json                  print one JSON object instead of text\n"
    "  --quiet                 print nothing but errors\n"
    "\n" STATUS;

const char* const Show =
    "NAME\n"
    "  tonalign show - print what a state, an analysis or a recording holds\n"
    "\n"
    "SYNOPSIS\n"
    "  tonalign show FILE [--json | --csv] [--rate HZ]\n"
    "\n"
    "DESCRIPTION\n"
    "  Of a state the settings and bands, of an analysis or a recording the spectrum.\n"
    "\n"
    "  --json                  one JSON object\n"
    "  --csv                   1024 lines: frequency_hz,response_db of a state's bands,\n"
    "                          frequency_hz,level_db of an analysis or a recording\n"
    "  --rate HZ               sample rate at which a state's bands are evaluated (48000)\n"
    "  --quiet                 show no progress\n"
    "\n" STATUS;
}   // namespace HelpTexts
