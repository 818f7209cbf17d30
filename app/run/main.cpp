// Entry point; the run control replaces this placeholder.
int main() { return 0; }
