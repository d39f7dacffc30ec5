int x_stub();int x_stub(){return 0;}
