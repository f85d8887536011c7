#ifndef A
#define A /*
#endif
*/
1
#endif
