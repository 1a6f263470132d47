// SPDX-License-Identifier: MIT
// rvtools: tones and music. A tone is a square wave of a frequency and a length; music is a text
// in the music language of the home computers' PLAY statement (docs/manual/sound.md). Both go
// into one queue that plays in the order of queueing, while the program goes on; the queue holds
// at most ten minutes of sound. The runtime makes the samples itself (mono, 16 bits,
// SoundSampleRate a second); a host with an audio device pulls them (Host::startSoundOutput),
// and without one the queue plays silently in real time, so that a program runs alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "rvtools/types.hpp"

namespace rvtools {

// Queues a square wave of `frequency` Hz (37..32767) for `milliseconds` and returns at once.
void t_Sound(Int frequency, Int milliseconds);
// Plays music; waits until it has played unless the music (or music before it) said MB.
void t_Play(std::string_view music);
// Waits until everything queued has played.
void t_SoundWait();
// Silences at once and empties the queue; whoever waits for the sound returns.
void t_SoundStop();
// Whether anything is playing or queued.
bool t_SoundBusy();

// ---- What a host asks of the runtime

inline constexpr int SoundSampleRate = 48000;
// The queue's bound: ten minutes of sound.
inline constexpr std::int64_t SoundQueueSamples = std::int64_t{SoundSampleRate} * 600;

// The next `count` samples of the sound (silence where nothing plays) into `out`, which advances
// the play position by `count`. A host's audio thread calls it once its output has started.
// Returns `count`.
std::size_t pullSoundSamples(std::int16_t* out, std::size_t count);

}  // namespace rvtools
