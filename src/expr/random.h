// The RND generator's state lives with the functions; the link pass reseeds it.
#pragma once

// Seeds the generator from the calendar time, as every link does.
void ReseedRandom();
