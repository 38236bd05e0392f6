#pragma once

#include <cstddef>

class JsonLineWriter;
struct SampleState;

/**
 * How each sample key of the recording format is written from the state of
 * a generated sample, in the order the keys stand in a line.
 */
struct SampleWriter
{
    const char *key;
    void (*write)(const SampleState &state, JsonLineWriter &line);
    // For keys that only some samples hold; none means every sample.
    bool (*present)(const SampleState &state) = nullptr;
};

extern const SampleWriter sampleWriters[];
extern const std::size_t sampleWriterCount;
