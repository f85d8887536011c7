#ifndef A
#define A
#else
1
#endif
