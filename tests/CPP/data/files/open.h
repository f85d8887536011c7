#if 1
in
