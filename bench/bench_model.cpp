// placeholder
int main(){}
