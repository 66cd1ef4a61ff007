// The RND generator's state lives with the functions. Each run seeds it once
// at its start; a chained program goes on with its caller's sequence.
#pragma once

// Seeds from the clock to the microsecond, mixed with the process id, so that
// runs started a moment apart draw unrelated sequences.
void SeedRandomFromClock();
// RANDOMIZE x: the same x gives the same sequence, different x different ones.
void SeedRandom(float x);
