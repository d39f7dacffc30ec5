// Built without any of the hardening.
int main() { return 0; }
