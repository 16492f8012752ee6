%MASTERCLOCKMULT = 1;
%SMALLESTUNIT = 9;
%AUTOASSIGN = 0;
%DECIMALS = 0;
%ENDTIME = 400;
$strobe = 0 2 1 4 0 2;
clk { A I Default NRZ 0 1 50 } =(1 5 0 5)##;
rst_n { A I Default NRZ 0 1 50 } = 0 25 1 375;
en { A I Default NRZ 0 1 50 } = 0 45 1 160 0 40 1 155;
oe_n { A I Default NRZ 0 1 50 } = 0 360 1 40;
sample { A I Default RZ 0 1 50 } = 0 102 1 4 0 196 1 4 0 94;
[cnt0...cnt3] { B O Default NRZ 0 1 50 } = DonTCare 5 0 45 1 10 2 10 3 10 4 10 5 10 6 10 7 10 8 10 9 10
 A 10 B 10 C 10 D 10 E 10 F 10 0 50 1 10 2 10 3 10
 4 10 5 10 6 10 7 10 8 10 9 10 A 10 B 10 HighZ 40;
carry { B O Default NRZ 0 1 50 } = 2 5 0 185 1 10 0 160 3 40;
din[d7,d6,d5,d4,d3,d2,d1,d0] { C B Default NRZ 5 1 50 } = HighZ 40 A5 20 3C 20 DonTCare 20 HighZ 100 0F 20 F0 20 DonTCare 20 HighZ 135;
