#ifndef A
#define A
#if 1
#endif
1
#endif
